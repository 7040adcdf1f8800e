#include "store/LintoraSession.h"
#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"

#include <gmock/gmock.h>

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

/// The program itself, off the screen, in a home folder of its own.
class Launch : public testing::Test
{
protected:
    void start(QProcess &process, const QStringList &arguments, const QString &platform = u"offscreen"_s) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, m_outside.path(QString()));
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        environment.remove(u"DISPLAY"_s);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_outside.path(QString()));
        process.start(QStringLiteral(LINTORA_PROGRAM), arguments);
    }

    static int status(QProcess &process)
    {
        EXPECT_TRUE(Events::waitFor([&] { return process.state() == QProcess::NotRunning; }));
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    /// How many cues the program's draft holds.
    qsizetype savedCues() const
    {
        QFile draft(m_outside.path(u"Library/Application Support/Lintora/Draft.json"_s));
        return draft.open(QIODevice::ReadOnly) ? LintoraSession::decode(draft.readAll()).items.size() : 0;
    }

    bool comesToHold(qsizetype cues) const
    {
        return Events::waitFor([&] { return savedCues() == cues; });
    }

    static void kill(QProcess &process)
    {
        process.kill();
        process.waitForFinished();
    }

    TemporaryModel m_outside;
};

TEST_F(Launch, opens_the_file_of_its_command_line_and_later_those_of_others)
{
    m_outside.srt(u"一.srt"_s, 2);
    m_outside.srt(u"第 二.srt"_s, 3);
    QProcess first;
    start(first, {u"一.srt"_s});
    ASSERT_TRUE(comesToHold(2));
    QProcess second;
    start(second, {u"第 二.srt"_s});
    EXPECT_EQ(status(second), 0);
    EXPECT_TRUE(comesToHold(3));
    EXPECT_EQ(first.state(), QProcess::Running);
    kill(first);
}

TEST_F(Launch, takes_up_the_job_of_a_program_that_was_killed)
{
    m_outside.srt(u"一.srt"_s, 2);
    m_outside.srt(u"二.srt"_s, 4);
    QProcess first;
    start(first, {u"一.srt"_s});
    ASSERT_TRUE(comesToHold(2));
    kill(first);
    QProcess next;
    start(next, {u"二.srt"_s});
    EXPECT_TRUE(comesToHold(4));
    EXPECT_EQ(next.state(), QProcess::Running);
    kill(next);
}

TEST_F(Launch, tells_its_version_and_its_use_where_there_is_no_display)
{
    for (const auto &[argument, said] : {std::pair(u"--version"_s, LINTORA_VERSION), {u"--help"_s, "SRT、FCPXML"}}) {
        QProcess process;
        start(process, {argument}, u"xcb"_s);
        EXPECT_EQ(status(process), 0);
        EXPECT_THAT(process.readAllStandardOutput().toStdString(), testing::HasSubstr(said));
    }
}

} // namespace
