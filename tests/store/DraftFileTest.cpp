#include "store/DraftFile.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/FileReader.h"
#include "tests/support/Events.h"
#include "tests/support/FileIdentity.h"
#include "tests/support/Sessions.h"
#include "tests/support/Unprivileged.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

void put(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

class DraftFileTest : public ::testing::Test
{
protected:
    QString folder() const { return m_folder.filePath(u"Lintora"_s); }
    QString path() const { return folder() + u"/Draft.json"_s; }

    QStringList names() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    void putDraft(const QByteArray &content) const
    {
        QDir().mkpath(folder());
        put(path(), content);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(DraftFileTest, the_witness_hears_of_a_state_before_and_after_the_file_holds_it)
{
    QStringList heard;
    const auto hear = [&](const QString &what) {
        return [&heard, this, what](quint64 number) {
            const QString held = QFile::exists(path()) ? LintoraSession::read(path()).source : u"nothing"_s;
            heard += u"%1 %2, holds %3"_s.arg(what).arg(number).arg(held);
        };
    };
    DraftFile draft(path(), {.aboutToReplace = hear(u"about"_s), .replaced = hear(u"done"_s)});
    draft.save(Sessions::uniform(u"a"_s), 1);
    draft.flush();
    draft.save(Sessions::uniform(u"b"_s), 2);
    draft.flush();
    draft.save(Sessions::uniform(u"b"_s), 3);
    draft.flush();
    EXPECT_EQ(heard, QStringList({u"about 1, holds nothing"_s, u"done 1, holds a"_s, u"about 2, holds a"_s,
                                  u"done 2, holds b"_s, u"about 3, holds b"_s, u"done 3, holds b"_s}));
}

TEST_F(DraftFileTest, the_newest_state_is_there_after_flush)
{
    DraftFile draft(path());
    EXPECT_EQ(draft.load(), std::nullopt);
    for (int i = 0; i < 100; ++i)
        draft.save(Sessions::uniform(QString::number(i)));
    draft.flush();
    EXPECT_EQ(FileReader::readAll(path()), Sessions::uniform(u"99"_s).encoded());
    EXPECT_EQ(DraftFile(path()).load(), Sessions::uniform(u"99"_s));
    EXPECT_EQ(names(), QStringList{u"Draft.json"_s});
}

TEST_F(DraftFileTest, saves_without_being_waited_for)
{
    DraftFile draft(path());
    draft.save(Sessions::full());
    EXPECT_TRUE(Events::waitFor([&] { return QFile::exists(path()); }));
    EXPECT_EQ(LintoraSession::read(path()), Sessions::full());
}

TEST_F(DraftFileTest, what_waits_is_saved_at_the_end)
{
    {
        DraftFile draft(path());
        draft.save(Sessions::uniform(u"a"_s));
        draft.save(Sessions::uniform(u"b"_s));
    }
    EXPECT_EQ(LintoraSession::read(path()), Sessions::uniform(u"b"_s));
}

TEST_F(DraftFileTest, the_same_state_is_written_once)
{
    putDraft(Sessions::uniform(u"a"_s).encoded() + " ");
    DraftFile draft(path());
    const auto before = FileIdentity::of(path());
    ASSERT_TRUE(draft.load().has_value());
    draft.save(Sessions::uniform(u"a"_s));
    draft.flush();
    EXPECT_EQ(FileIdentity::of(path()), before);
    draft.save(Sessions::uniform(u"b"_s));
    draft.flush();
    const auto after = FileIdentity::of(path());
    EXPECT_NE(after, before);
    draft.save(Sessions::uniform(u"b"_s));
    draft.flush();
    EXPECT_EQ(FileIdentity::of(path()), after);
    QFile::remove(path());
    draft.save(Sessions::uniform(u"b"_s));
    draft.flush();
    EXPECT_TRUE(QFile::exists(path())) << "unless the file is gone";
}

TEST_F(DraftFileTest, a_state_of_more_than_16_MiB_is_refused_and_the_file_stays)
{
    DraftFile draft(path());
    QStringList reports;
    QObject::connect(&draft, &DraftFile::failed, &draft, [&](const QString &report) { reports += report; });
    LintoraSession largest;
    largest.source = QString(16'777'216 - largest.encoded().size(), u'a');
    draft.save(largest);
    draft.flush();
    EXPECT_EQ(QFileInfo(path()).size(), 16'777'216);
    LintoraSession tooLarge = largest;
    tooLarge.source += u'a';
    for (int i = 0; i < 2; ++i) {
        draft.save(tooLarge);
        EXPECT_THROW(draft.flush(), ConversionError);
    }
    Events::handle();
    EXPECT_EQ(reports, QStringList{u"字幕草稿过大，请导出 SRT 后分批处理"_s});
    EXPECT_EQ(LintoraSession::read(path()), largest);
}

TEST_F(DraftFileTest, a_failure_is_reported_once_and_saving_goes_on)
{
    put(folder(), "a file where the folder should be");
    DraftFile draft(path());
    QStringList reports;
    QObject::connect(&draft, &DraftFile::failed, &draft, [&](const QString &report) { reports += report; });
    const auto fail = [&](const QString &source) {
        draft.save(Sessions::uniform(source));
        EXPECT_THROW(draft.flush(), PlatformError);
        Events::handle();
    };
    fail(u"a"_s);
    fail(u"b"_s);
    EXPECT_EQ(reports.size(), 1);
    ASSERT_TRUE(QFile::remove(folder()));
    draft.flush();
    EXPECT_EQ(LintoraSession::read(path()), Sessions::uniform(u"b"_s)) << "saved without being handed over again";
    ASSERT_TRUE(QDir(folder()).removeRecursively());
    put(folder(), "again");
    fail(u"c"_s);
    EXPECT_EQ(reports.size(), 2);
}

TEST_F(DraftFileTest, a_draft_that_cannot_be_read_is_set_aside)
{
    QStringList expected;
    const QByteArray good = Sessions::uniform(u"a"_s).encoded();
    for (const QByteArray &bad :
         {QByteArray(), good.chopped(1), QByteArray(good).replace("\"schema\":2", "\"schema\":3"), QByteArray("\xFF"),
          good + QByteArray(16'777'217 - good.size(), ' ')}) {
        putDraft(bad);
        DraftFile draft(path());
        EXPECT_EQ(draft.load(), std::nullopt);
        EXPECT_EQ(FileReader::readAll(path()), bad) << "nothing is touched before there is something to save";
        draft.save(Sessions::uniform(u"new"_s));
        draft.flush();
        expected += u"Draft-unreadable-%1.json"_s.arg(expected.size() + 1);
        EXPECT_EQ(FileReader::readAll(folder() + u'/' + expected.last()), bad);
        EXPECT_EQ(LintoraSession::read(path()), Sessions::uniform(u"new"_s));
        draft.save(Sessions::uniform(u"newer"_s));
        draft.flush();
        EXPECT_EQ(names(), expected + QStringList{u"Draft.json"_s}) << "our own draft is not set aside";
    }
}

TEST_F(DraftFileTest, what_is_no_file_is_set_aside_too)
{
    const auto expectSetAside = [&](const QString &name) {
        DraftFile draft(path());
        EXPECT_EQ(draft.load(), std::nullopt);
        draft.save(Sessions::uniform(u"new"_s));
        draft.flush();
        EXPECT_EQ(LintoraSession::read(path()), Sessions::uniform(u"new"_s));
        EXPECT_TRUE(names().contains(name)) << name.toStdString();
        ASSERT_TRUE(QFile::remove(path()));
    };
    QDir().mkpath(path() + u"/folder"_s);
    expectSetAside(u"Draft-unreadable-1.json"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    expectSetAside(u"Draft-unreadable-2.json"_s);
    ASSERT_TRUE(QFile::link(folder() + u"/nowhere"_s, path()));
    expectSetAside(u"Draft-unreadable-3.json"_s);
}

TEST_F(DraftFileTest, a_draft_that_nobody_has_read_is_set_aside)
{
    putDraft(Sessions::uniform(u"old"_s).encoded());
    DraftFile draft(path());
    draft.save(Sessions::uniform(u"new"_s));
    draft.flush();
    EXPECT_EQ(LintoraSession::read(folder() + u"/Draft-unreadable-1.json"_s), Sessions::uniform(u"old"_s));
}

TEST(DraftFile, a_draft_without_permission_is_set_aside)
{
    const Unprivileged user;
    if (!user.holds())
        GTEST_SKIP() << "needs a process without the administrator's rights";
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"Draft.json"_s);
    put(path, Sessions::uniform(u"old"_s).encoded());
    ASSERT_TRUE(QFile::setPermissions(path, {}));
    DraftFile draft(path);
    EXPECT_EQ(draft.load(), std::nullopt);
    draft.save(Sessions::uniform(u"new"_s));
    draft.flush();
    EXPECT_EQ(LintoraSession::read(path), Sessions::uniform(u"new"_s));
    EXPECT_TRUE(QFile::exists(folder.filePath(u"Draft-unreadable-1.json"_s)));
}

TEST_F(DraftFileTest, loading_removes_what_a_killed_run_left)
{
    const QStringList kept{u"Draft.json"_s, u"Draft.json.Young"_s, u"Draft.json.backup1"_s, u"Other.json.AbCdEf"_s};
    putDraft(Sessions::uniform(u"a"_s).encoded());
    for (const QString &name : kept.sliced(1) + QStringList{u"Draft.json.AbCdEf"_s})
        put(folder() + u'/' + name, "half");
    put(folder() + u"/Draft.json.ZyXwVu"_s, "being written");
    for (const QString &name : names()) {
        QFile file(folder() + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        const int age = name.endsWith(u"ZyXwVu"_s) ? 9 * 60 : 11 * 60;
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime));
    }
    EXPECT_TRUE(DraftFile(path()).load().has_value());
    EXPECT_EQ(names(), QStringList({u"Draft.json"_s, u"Draft.json.backup1"_s, u"Draft.json.Young"_s,
                                    u"Draft.json.ZyXwVu"_s, u"Other.json.AbCdEf"_s}));
}
