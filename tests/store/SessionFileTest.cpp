#include "store/SessionFile.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "tests/support/Events.h"
#include "tests/support/FileIdentity.h"
#include "tests/support/Sessions.h"
#include "tests/support/Unprivileged.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What a session file says, as sources of the sessions.
struct Listener
{
    explicit Listener(SessionFile &file)
    {
        QObject::connect(&file, &SessionFile::arrived, &file, [this](const LintoraSession &s) { arrived += s.source; });
        QObject::connect(&file, &SessionFile::overruled, &file,
                         [this](const LintoraSession &s) { overruled += s.source; });
        QObject::connect(&file, &SessionFile::failed, &file, [this](const QString &text) { failed += text; });
    }

    QStringList arrived;
    QStringList overruled;
    QStringList failed;
};

/// Looks are made when a test asks for one: the interval is longer than any test.
class SessionFileTest : public ::testing::Test
{
protected:
    QString path() const { return m_folder.filePath(u"0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.json"_s); }

    void putBytes(const QByteArray &bytes) const
    {
        AtomicFile file(path());
        file.write(bytes);
        file.commit();
    }

    void put(const QString &source) const { putBytes(Sessions::uniform(source).encoded()); }
    QString sourceInFile() const { return LintoraSession::read(path()).source; }

    quint64 identity() const { return FileIdentity::of(path()); }

    static constexpr auto never = std::chrono::milliseconds(24h);

private:
    QTemporaryDir m_folder;
};

void refresh(SessionFile &file)
{
    file.refresh();
    Events::handle();
}

} // namespace

TEST_F(SessionFileTest, looks_by_itself)
{
    SessionFile file(path(), 1ms);
    Listener heard(file);
    put(u"a"_s);
    EXPECT_TRUE(Events::waitFor([&] { return heard.arrived == QStringList{u"a"_s}; }));
    put(u"b"_s);
    EXPECT_TRUE(Events::waitFor([&] { return heard.arrived == QStringList({u"a"_s, u"b"_s}); }));
}

TEST_F(SessionFileTest, delivers_each_version_once)
{
    put(u"a"_s);
    SessionFile file(path(), never);
    Listener heard(file);
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList{u"a"_s});
    refresh(file);
    put(u"a"_s);
    refresh(file);
    EXPECT_EQ(heard.arrived.size(), 1) << "the same bytes are no new version";
    put(u"b"_s);
    put(u"c"_s);
    refresh(file);
    put(u"a"_s);
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList({u"a"_s, u"c"_s, u"a"_s}));
}

TEST_F(SessionFileTest, passes_over_what_cannot_be_read)
{
    SessionFile file(path(), never);
    Listener heard(file);
    const QByteArray good = Sessions::uniform(u"x"_s).encoded();
    refresh(file);
    for (const QByteArray &bad :
         {QByteArray(), good.chopped(1), QByteArray(good).replace("\"schema\":2", "\"schema\":3"),
          good + QByteArray(16'777'217 - good.size(), ' ')}) {
        putBytes(bad);
        refresh(file);
        refresh(file);
    }
    ASSERT_TRUE(QFile::remove(path()));
    refresh(file);
    ASSERT_TRUE(QDir().mkdir(path()));
    refresh(file);
    ASSERT_TRUE(QDir().rmdir(path()));
    ASSERT_EQ(mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    refresh(file);
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(heard.arrived, QStringList());
    putBytes(good);
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList{u"x"_s});
    EXPECT_EQ(heard.failed, QStringList());
}

TEST_F(SessionFileTest, does_not_hand_back_its_own_writes)
{
    SessionFile file(path(), never);
    Listener heard(file);
    for (const QString &source : {u"a"_s, u"b"_s, u"a"_s}) {
        file.save(Sessions::uniform(source));
        refresh(file);
        EXPECT_EQ(sourceInFile(), source);
    }
    EXPECT_EQ(heard.arrived, QStringList());
    const auto before = identity();
    file.save(Sessions::uniform(u"a"_s));
    file.flush();
    EXPECT_EQ(identity(), before) << "the same state is written once";
}

TEST_F(SessionFileTest, an_applied_version_is_not_written_back_whatever_its_bytes)
{
    const QByteArray ours = Sessions::full().encoded();
    QByteArray theirs = QByteArray(ours).replace("0F1E2D3C-4B5A", "0f1e2d3c-4b5a").replace("访谈", "\\u8bbf\\u8c08");
    theirs.replace("\"strokeWidth\":0.1", " \"strokeWidth\" : 1.0e-1");
    ASSERT_NE(theirs, ours);
    putBytes(theirs);
    SessionFile file(path(), never);
    QObject::connect(&file, &SessionFile::arrived, &file, [&](const LintoraSession &session) { file.save(session); });
    refresh(file);
    file.flush();
    EXPECT_EQ(FileReader::readAll(path()), theirs);
    LintoraSession changed = Sessions::full();
    changed.source = u"改"_s;
    file.save(changed);
    file.flush();
    EXPECT_EQ(FileReader::readAll(path()), changed.encoded());
}

TEST_F(SessionFileTest, an_adopted_state_is_not_written_back)
{
    LintoraSession old = Sessions::uniform(u"a"_s);
    old.schema = 1;
    putBytes(old.encoded());
    SessionFile file(path(), never);
    QObject::connect(&file, &SessionFile::arrived, &file, [&](LintoraSession session) {
        session.schema = 2;
        file.adopt(session);
        file.save(session);
    });
    refresh(file);
    file.flush();
    EXPECT_EQ(FileReader::readAll(path()), old.encoded());
}

TEST_F(SessionFileTest, a_local_change_wins_over_a_version_that_was_not_delivered)
{
    put(u"start"_s);
    SessionFile file(path(), never);
    Listener heard(file);
    refresh(file);
    put(u"theirs"_s);
    file.save(Sessions::uniform(u"ours"_s));
    refresh(file);
    EXPECT_EQ(sourceInFile(), u"ours"_s);
    EXPECT_EQ(heard.arrived, QStringList{u"start"_s});
    EXPECT_EQ(heard.overruled, QStringList{u"theirs"_s});
    put(u"later"_s);
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList({u"start"_s, u"later"_s}));
}

TEST_F(SessionFileTest, a_state_that_is_no_change_loses_nothing_of_theirs)
{
    put(u"start"_s);
    SessionFile file(path(), never);
    Listener heard(file);
    refresh(file);
    put(u"theirs"_s);
    file.save(Sessions::uniform(u"start"_s));
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList({u"start"_s, u"theirs"_s}));
    EXPECT_EQ(sourceInFile(), u"theirs"_s);
}

TEST_F(SessionFileTest, nothing_is_delivered_between_a_change_and_its_state)
{
    put(u"start"_s);
    SessionFile file(path(), never);
    Listener heard(file);
    refresh(file);
    put(u"theirs"_s);
    file.announceChange();
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList{u"start"_s});
    file.save(Sessions::uniform(u"ours"_s));
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList{u"start"_s});
    EXPECT_EQ(heard.overruled, QStringList{u"theirs"_s});
    put(u"theirs"_s);
    file.announceChange();
    refresh(file);
    file.save(Sessions::uniform(u"ours"_s));
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList({u"start"_s, u"theirs"_s})) << "the change came to nothing";
}

TEST_F(SessionFileTest, a_write_that_fails_is_reported_once_and_tried_again)
{
    ASSERT_TRUE(QDir().mkpath(path() + u"/not empty"_s));
    SessionFile file(path(), never);
    Listener heard(file);
    file.save(Sessions::uniform(u"a"_s));
    EXPECT_THROW(file.flush(), PlatformError);
    refresh(file);
    EXPECT_EQ(heard.failed.size(), 1);
    ASSERT_TRUE(QDir(path()).removeRecursively());
    put(u"theirs"_s);
    refresh(file);
    EXPECT_EQ(sourceInFile(), u"a"_s);
    EXPECT_EQ(heard.arrived, QStringList());
    EXPECT_EQ(heard.overruled, QStringList{u"theirs"_s});
    file.flush();
    ASSERT_TRUE(QFile::remove(path()));
    ASSERT_EQ(mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    file.save(Sessions::uniform(u"b"_s));
    EXPECT_THROW(file.flush(), PlatformError) << "a pipe is not waited for";
    refresh(file);
    EXPECT_EQ(heard.failed.size(), 2);
}

TEST_F(SessionFileTest, a_session_that_nobody_could_read_is_not_written)
{
    put(u"start"_s);
    SessionFile file(path(), never);
    refresh(file);
    file.save(Sessions::uniform(QString(16'777'216, u'a'), 0));
    EXPECT_THROW(file.flush(), ConversionError);
    EXPECT_EQ(sourceInFile(), u"start"_s);
    file.save(Sessions::uniform(u"start"_s));
    EXPECT_NO_THROW(file.flush()) << "the change was taken back";
}

TEST(SessionFile, a_file_without_permission_is_passed_over)
{
    const Unprivileged user;
    if (!user.holds())
        GTEST_SKIP() << "needs a process without the administrator's rights";
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"session.json"_s);
    QFile theirs(path);
    ASSERT_TRUE(theirs.open(QIODevice::WriteOnly));
    theirs.write(Sessions::uniform(u"a"_s).encoded());
    theirs.close();
    ASSERT_TRUE(theirs.setPermissions({}));
    SessionFile file(path, std::chrono::milliseconds(24h));
    Listener heard(file);
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList());
    ASSERT_TRUE(theirs.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    refresh(file);
    EXPECT_EQ(heard.arrived, QStringList{u"a"_s});
}

TEST_F(SessionFileTest, two_that_give_back_what_they_get_come_to_rest)
{
    SessionFile left(path(), 1ms);
    SessionFile right(path(), 1ms);
    QString atLeft;
    QString atRight;
    const auto follow = [](SessionFile &file, QString &source) {
        QObject::connect(&file, &SessionFile::arrived, &file, [&](const LintoraSession &session) {
            source = session.source;
            file.save(session);
        });
    };
    follow(left, atLeft);
    follow(right, atRight);
    for (int i = 0; i < 100; ++i) {
        SessionFile &file = i % 2 == 0 ? left : right;
        (i % 2 == 0 ? atLeft : atRight) = QString::number(i);
        file.save(Sessions::uniform(QString::number(i)));
        if (i % 7 == 0) {
            ASSERT_TRUE(Events::waitFor([&] { return atLeft == atRight; })) << i;
        }
    }
    ASSERT_TRUE(Events::waitFor([&] { return atLeft == atRight; }));
    const auto before = identity();
    for (int i = 0; i < 20; ++i) {
        refresh(left);
        refresh(right);
    }
    EXPECT_EQ(identity(), before);
    EXPECT_EQ(sourceInFile(), atLeft);
}

/// The peer writes hundreds of versions in every manner, and checks in its turn that what we wrote is whole. Both run
/// without the administrator's rights where they can, so that a ban on reading means something.
TEST(SessionFile, two_programs_share_a_file_without_tearing_or_echo)
{
    const Unprivileged user;
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"session.json"_s);
    constexpr int versions = 500;
    SessionFile file(path, 1ms);
    LintoraSession state = Sessions::uniform(u"start"_s);
    int lastOfPeer = -1;
    int deliveries = 0;
    QObject::connect(&file, &SessionFile::arrived, &file, [&](const LintoraSession &session) {
        ASSERT_TRUE(Sessions::isUniform(session)) << "torn: " << session.source.toStdString();
        ASSERT_TRUE(session.source.startsWith(u"peer "_s)) << "our own write: " << session.source.toStdString();
        const int number = session.source.mid(5).toInt();
        ASSERT_GT(number, lastOfPeer) << "a version twice, or an older one after a newer one";
        lastOfPeer = number;
        ++deliveries;
        state = session;
        file.save(state);
    });
    QObject::connect(&file, &SessionFile::overruled, &file,
                     [&](const LintoraSession &session) { EXPECT_TRUE(Sessions::isUniform(session)); });
    int changes = 0;
    int deliveriesBefore = 0;
    QTimer editing;
    QObject::connect(&editing, &QTimer::timeout, &file, [&] {
        // Local changes win: on a slow machine they must leave the other program a turn.
        if (deliveries == deliveriesBefore)
            return;
        deliveriesBefore = deliveries;
        ++changes;
        state = Sessions::uniform(u"ours %1"_s.arg(changes), changes % 300);
        file.save(state);
    });
    QProcess peer;
    peer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    peer.start(QStringLiteral(LINTORA_SESSION_PEER), {path, QString::number(versions)});
    if (!peer.waitForStarted())
        GTEST_SKIP() << "an ordinary user cannot run " << LINTORA_SESSION_PEER;
    editing.start(15);
    ASSERT_TRUE(Events::waitFor([&] { return peer.state() == QProcess::NotRunning; }));
    editing.stop();
    EXPECT_EQ(peer.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(peer.exitCode(), 0) << "the peer read something torn";
    // How many turns each side gets is the machine's business; that both got one is ours.
    EXPECT_GT(deliveries, 0);
    EXPECT_GT(changes, 0);

    ASSERT_TRUE(Events::waitFor([&] {
        file.refresh();
        return QFileInfo(path).isFile() && LintoraSession::read(path).source == state.source;
    }));
    const auto before = FileIdentity::of(path);
    for (int i = 0; i < 20; ++i)
        refresh(file);
    EXPECT_EQ(FileIdentity::of(path), before);
}
