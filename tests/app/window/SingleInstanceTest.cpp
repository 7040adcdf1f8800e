#include "app/window/SingleInstance.h"

#include "core/ConversionError.h"
#include "tests/support/Events.h"
#include "tests/support/Unprivileged.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <deque>

using namespace Qt::StringLiterals;

namespace {

constexpr int ample = 20'000; // milliseconds; for whom waiting is no part of the test

/// A launch in a process of its own.
class Peer
{
public:
    explicit Peer(const QString &home, int patienceMS = ample, const QStringList &links = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, home);
        m_process.setProcessEnvironment(environment);
        m_process.start(QStringLiteral(LINTORA_INSTANCE_PEER), QStringList(QString::number(patienceMS)) + links);
    }

    ~Peer()
    {
        signal(SIGCONT);
        m_process.kill();
        m_process.waitForFinished();
    }

    Q_DISABLE_COPY_MOVE(Peer)

    /// What it has said so far, line by line.
    QStringList said()
    {
        m_output += m_process.readAllStandardOutput();
        QStringList lines = QString::fromUtf8(m_output).split(u'\n');
        lines.removeLast();
        return lines;
    }

    bool says(const QString &line)
    {
        return Events::waitFor([&] { return said().contains(line); });
    }

    /// Waits for its end.
    int status()
    {
        EXPECT_TRUE(Events::waitFor([&] { return m_process.state() == QProcess::NotRunning; }));
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    bool hasEnded() const { return m_process.state() == QProcess::NotRunning; }

    void signal(int number) const
    {
        if (m_process.processId() > 0)
            ::kill(static_cast<pid_t>(m_process.processId()), number);
    }

private:
    QProcess m_process;
    QByteArray m_output;
};

class RunningOnce : public testing::Test
{
protected:
    RunningOnce() { qputenv("HOME", home().toUtf8()); }
    ~RunningOnce() override { qputenv("HOME", m_before); }

    QString home() const { return m_home.path(); }

    /// How many sockets the running program has: the one it listens on, and one for each that has connected.
    static qsizetype sockets()
    {
        QFile list(u"/proc/net/unix"_s);
        EXPECT_TRUE(list.open(QIODevice::ReadOnly));
        return list.readAll().count('@' + SingleInstance::name().toUtf8() + '\n');
    }

    const QTemporaryDir m_home;
    const QByteArray m_before = qgetenv("HOME");
};

TEST_F(RunningOnce, a_second_launch_hands_its_links_over_and_ends)
{
    Peer first(home());
    ASSERT_TRUE(first.says(u"first"_s));
    const QStringList links = {u"file:///影片/第 1 集.srt"_s, u"lintora://floating?session=/a b"_s};
    Peer second(home(), ample, links);
    EXPECT_EQ(second.status(), 0);
    EXPECT_EQ(second.said(), QStringList(u"handed over"_s));
    ASSERT_TRUE(first.says(u"received 2"_s));
    EXPECT_EQ(first.said(), QStringList({u"first"_s, links[0], links[1], u"received 2"_s}));
}

TEST_F(RunningOnce, a_second_launch_without_links_is_told_as_well)
{
    Peer first(home());
    ASSERT_TRUE(first.says(u"first"_s));
    EXPECT_EQ(Peer(home()).status(), 0);
    EXPECT_TRUE(first.says(u"received 0"_s));
}

TEST_F(RunningOnce, another_home_folder_is_another_program)
{
    const QTemporaryDir elsewhere;
    Peer first(home());
    Peer second(elsewhere.path());
    EXPECT_TRUE(first.says(u"first"_s));
    EXPECT_TRUE(second.says(u"first"_s));
}

TEST_F(RunningOnce, a_killed_program_leaves_its_place_free)
{
    for (int round = 0; round < 3; ++round) {
        Peer first(home());
        ASSERT_TRUE(first.says(u"first"_s));
        first.signal(SIGKILL);
        EXPECT_EQ(first.status(), -1);
    }
    Peer next(home());
    EXPECT_TRUE(next.says(u"first"_s));
}

TEST_F(RunningOnce, one_of_many_launches_at_once_becomes_the_first_and_gets_the_links_of_all_others)
{
    constexpr int launches = 12;
    std::deque<Peer> peers;
    for (int i = 0; i < launches; ++i)
        peers.emplace_back(home(), ample, QStringList(u"file:///%1.srt"_s.arg(i)));
    Peer *first = nullptr;
    const auto ended = [&] {
        return std::ranges::count_if(peers, [](const Peer &peer) { return peer.hasEnded(); }) == launches - 1;
    };
    ASSERT_TRUE(Events::waitFor(ended));
    for (Peer &peer : peers) {
        if (!peer.hasEnded())
            first = &peer;
        else
            EXPECT_EQ(peer.status(), 0);
    }
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(Events::waitFor([&] { return first->said().count(u"received 1"_s) == launches - 1; }));
    EXPECT_EQ(first->said().filter(u"file:"_s).removeDuplicates(), 0);
}

TEST_F(RunningOnce, a_launch_gives_up_on_a_program_that_does_not_answer)
{
    Peer first(home());
    ASSERT_TRUE(first.says(u"first"_s));
    first.signal(SIGSTOP);
    Peer second(home(), 200, {u"file:///a.srt"_s});
    EXPECT_EQ(second.status(), 1);
    EXPECT_EQ(second.said(), QStringList(u"VELMORA 字幕助手已在运行，但没有回应。"_s));
}

TEST_F(RunningOnce, a_launch_takes_the_place_of_a_program_that_ends_while_it_waits)
{
    Peer first(home());
    ASSERT_TRUE(first.says(u"first"_s));
    first.signal(SIGSTOP);
    Peer second(home(), ample, {u"file:///a.srt"_s});
    ASSERT_TRUE(Events::waitFor([] { return sockets() == 2; }));
    first.signal(SIGKILL);
    EXPECT_TRUE(second.says(u"first"_s));
}

TEST_F(RunningOnce, what_other_users_say_is_not_listened_to_and_they_are_told_nothing)
{
    // The place of the running program, taken by somebody else.
    QLocalServer stranger;
    stranger.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    {
        const Unprivileged other;
        if (!other.holds() || getuid() != 0)
            GTEST_SKIP() << "needs root, to become another user";
        ASSERT_TRUE(stranger.listen(SingleInstance::name()));
    }
    Peer first(home(), ample, {u"file:///secret.srt"_s});
    ASSERT_TRUE(first.says(u"first"_s));
    if (stranger.waitForNewConnection(0)) {
        QLocalSocket *const visitor = stranger.nextPendingConnection();
        EXPECT_TRUE(Events::waitFor([&] { return visitor->state() == QLocalSocket::UnconnectedState; }));
        EXPECT_EQ(visitor->readAll(), QByteArray());
    }
    stranger.close();

    Peer running(home());
    ASSERT_TRUE(running.says(u"first"_s));
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    {
        const Unprivileged other;
        socket.connectToServer(SingleInstance::name());
        socket.write(QByteArray("\0\0\0\16file:///a.srt\n", 18));
    }
    EXPECT_TRUE(Events::waitFor([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_EQ(socket.readAll(), QByteArray()) << "nothing is confirmed";
    EXPECT_EQ(running.said(), QStringList(u"first"_s));
}

struct Nonsense
{
    const char *name;
    QByteArray bytes;
};

class NonsenseSaid : public RunningOnce, public testing::WithParamInterface<Nonsense>
{};

TEST_P(NonsenseSaid, is_hung_up_on_and_disturbs_nobody)
{
    Peer first(home(), 500);
    ASSERT_TRUE(first.says(u"first"_s));
    std::deque<QLocalSocket> crowd(20);
    for (QLocalSocket &socket : crowd) {
        socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
        socket.connectToServer(SingleInstance::name());
        socket.write(GetParam().bytes);
    }
    Peer second(home(), ample, {u"file:///a.srt"_s});
    EXPECT_EQ(second.status(), 0);
    EXPECT_TRUE(first.says(u"received 1"_s));
    for (QLocalSocket &socket : crowd) {
        EXPECT_TRUE(Events::waitFor([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_EQ(socket.readAll(), QByteArray());
    }
    EXPECT_EQ(first.said(), QStringList({u"first"_s, u"file:///a.srt"_s, u"received 1"_s}));
}

INSTANTIATE_TEST_SUITE_P(Saying, NonsenseSaid,
                         testing::Values(Nonsense{"Nothing", {}}, Nonsense{"Half_a_size", QByteArray("\0\0", 2)},
                                         Nonsense{"Less_than_announced", QByteArray("\0\0\0\5file", 8)},
                                         Nonsense{"More_than_is_taken", QByteArray("\x7f\xff\xff\xff...", 7)},
                                         Nonsense{"No_last_line_feed", QByteArray("\0\0\0\7file:/a", 11)},
                                         Nonsense{"A_relative_link", QByteArray("\0\0\0\2a\n", 6)},
                                         Nonsense{"An_empty_link", QByteArray("\0\0\0\1\n", 5)}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(RunningOnce, more_links_than_a_message_takes_are_refused_before_anything_is_said)
{
    SingleInstance instance;
    EXPECT_THROW(instance.launch(QList<QUrl>(60'000, QUrl(u"file:///abcdefghijklmn.srt"_s))), ConversionError);
    EXPECT_EQ(sockets(), 0);
}

} // namespace
