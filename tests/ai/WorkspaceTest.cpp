#include "ai/Workspace.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/time.h>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// A temporary folder of the test's own, for what looks at all scratch folders.
class Workspaces : public testing::Test
{
protected:
    void SetUp() override
    {
        former = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(folder.path()));
    }
    void TearDown() override { former.isEmpty() ? void(qunsetenv("TMPDIR")) : void(qputenv("TMPDIR", former)); }

    /// Makes a folder that was written `hours` ago and has one file of that age, or of `fileHours`.
    void make(const QString &name, int hours, std::optional<int> fileHours = {})
    {
        const QString path = folder.filePath(name);
        QDir().mkpath(path);
        QFile file(path + u"/audio.wav"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.close();
        age(file.fileName(), fileHours.value_or(hours));
        age(path, hours);
    }

    static void age(const QString &path, int hours)
    {
        const time_t then = QDateTime::currentSecsSinceEpoch() - hours * 3'600;
        const timeval times[2] = {{then, 0}, {then, 0}};
        ASSERT_EQ(utimes(QFile::encodeName(path).constData(), times), 0);
    }

    QTemporaryDir folder;
    QByteArray former;
};

} // namespace

TEST_F(Workspaces, a_scratch_folder_is_the_users_alone_and_goes_with_its_content)
{
    QString path;
    {
        const Workspace workspace;
        path = workspace.path();
        EXPECT_TRUE(QFileInfo(path).fileName().startsWith(u"VELMORA-Subtitle-"));
        struct stat status = {};
        ASSERT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0700U);
        QFile file(workspace.file(u"audio.wav"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_NE(Workspace().path(), path);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
}

TEST_F(Workspaces, leftovers_older_than_a_day_are_removed_and_nothing_else)
{
    const QString uuid = u"VELMORA-Subtitle-01234567-89ab-4cde-8f01-23456789abc"_s;
    make(uuid + u'0', 25);
    make(uuid + u'1', 23);
    make(uuid + u'2', 25, 1);              // somebody still writes in it
    make(u"VELMORA-Subtitle-notes"_s, 48); // not ours
    make(u"Other-01234567"_s, 48);
    QFile::link(folder.filePath(u"Other-01234567"_s), folder.filePath(uuid + u'3'));
    Workspace::removeLeftovers();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList({u"Other-01234567"_s, uuid + u'1', uuid + u'2', uuid + u'3', u"VELMORA-Subtitle-notes"_s}));
}
