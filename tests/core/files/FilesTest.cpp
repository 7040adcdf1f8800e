#include "core/Cancelled.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/files/Folder.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cerrno>
#include <csignal>

using namespace Qt::StringLiterals;

namespace {

class Files : public ::testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString existing(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    /// Everything in the folder: what a failed write leaves behind shows up here.
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Files, a_committed_file_is_replaced_whole)
{
    const QString target = existing(u"a"_s, "old");
    QFile(target).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    AtomicFile file(target);
    file.write("new ");
    EXPECT_EQ(FileReader::readAll(target), "old");
    file.write("content");
    file.commit();
    EXPECT_EQ(FileReader::readAll(target), "new content");
    EXPECT_EQ(QFile(target).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    EXPECT_EQ(names(), QStringList{u"a"_s});
}

TEST_F(Files, without_commit_nothing_changes_and_nothing_stays)
{
    const QString target = existing(u"a"_s, "old");
    {
        AtomicFile file(target);
        file.write("half");
    }
    EXPECT_EQ(FileReader::readAll(target), "old");
    EXPECT_EQ(names(), QStringList{u"a"_s});
}

TEST_F(Files, what_was_written_is_read_back_in_pieces_and_can_be_given_up_at_each)
{
    QByteArray content(3 * 1024 * 1024 + 1, 'a');
    content[1024 * 1024] = 'b';
    content.back() = 'c';
    AtomicFile file(path(u"a"_s));
    file.write(content);
    int asked = 0;
    EXPECT_EQ(file.readBack([&] { ++asked; }), content);
    EXPECT_EQ(asked, 4);
    EXPECT_THROW(file.readBack([&] {
        if (--asked == 0)
            throw Cancelled();
    }),
                 Cancelled);
    EXPECT_EQ(file.readBack(), content);
}

TEST_F(Files, a_disk_that_is_full_in_the_middle_says_so)
{
    AtomicFile file(path(u"a"_s));
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit narrow = {.rlim_cur = 1'000, .rlim_max = before.rlim_max};
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &narrow);
    QString reason;
    try {
        file.write(QByteArray(2'000, 'x'));
    } catch (const PlatformError &error) {
        reason = error.description();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(reason, qt_error_string(EFBIG));
}

TEST_F(Files, a_folder_that_cannot_be_made_says_which_and_why)
{
    Folder::make(path(u"一/二"_s));
    Folder::make(path(u"一/二"_s));
    EXPECT_TRUE(QFileInfo(path(u"一/二"_s)).isDir());
    const QString inside = existing(u"a"_s, "") + u"/b"_s;
    try {
        Folder::make(inside);
        ADD_FAILURE();
    } catch (const PlatformError &error) {
        EXPECT_EQ(error.description(), u"无法创建文件夹“%1”：%2"_s.arg(inside, qt_error_string(ENOTDIR)));
    }
}

TEST_F(Files, a_link_stays_a_link)
{
    const QString target = existing(u"a"_s, "old");
    ASSERT_TRUE(QFile::link(target, path(u"link"_s)));
    AtomicFile file(path(u"link"_s));
    file.write("new");
    file.commit();
    EXPECT_EQ(FileReader::readAll(target), "new");
    EXPECT_TRUE(QFileInfo(path(u"link"_s)).isSymLink());
}

TEST_F(Files, a_target_that_cannot_be_replaced_is_refused)
{
    EXPECT_THROW(AtomicFile file(path(u""_s)), PlatformError) << "a folder";
    EXPECT_THROW(AtomicFile file(path(u"missing/a"_s)), PlatformError);
    // A device is written to as it stands; replacing it would take it away from everyone.
    AtomicFile full(u"/dev/full"_s);
    EXPECT_THROW(full.write("x"), PlatformError);
    EXPECT_FALSE(QFileInfo(u"/dev/full"_s).isFile());
}

TEST_F(Files, reading_is_bounded)
{
    const QString file = existing(u"a"_s, "12345");
    EXPECT_EQ(FileReader::readUpTo(file, 5), "12345");
    EXPECT_FALSE(FileReader::readUpTo(file, 4));
    EXPECT_EQ(FileReader::readUpTo(existing(u"empty"_s, ""), 4), "");
    EXPECT_FALSE(FileReader::readUpTo(u"/dev/zero"_s, 1'000'000)) << "a device without an end";
    EXPECT_THROW(FileReader::readUpTo(path(u"missing"_s), 5), PlatformError);
    EXPECT_THROW(FileReader::readAll(path(u""_s)), PlatformError) << "a folder";
}

TEST_F(Files, leftovers_of_killed_writers_go_and_peoples_copies_stay)
{
    const QString target = existing(u"Draft.json"_s, "mine");
    const QDateTime longAgo = QDateTime::currentDateTime().addDays(-1);
    for (const QString &name : {u"Draft.json.backup"_s, u"Draft.json.Backup"_s, u"Draft.json.BACKUP"_s,
                                u"Draft.json.aBcdEf"_s, u"Draft.json.aBcdEfg"_s}) {
        QFile file(existing(name, "x"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    }
    existing(u"Draft.json.aBcdEh"_s, "being written now");
    AtomicFile::removeLeftovers(target);
    QStringList left = names();
    left.sort();
    EXPECT_EQ(left.join(u' ').toStdString(), "Draft.json Draft.json.BACKUP Draft.json.Backup Draft.json.aBcdEfg "
                                             "Draft.json.aBcdEh Draft.json.backup");
}
