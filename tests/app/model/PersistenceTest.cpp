#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "store/LaunchLink.h"
#include "store/Locations.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"
#include "tests/support/OwnedCues.h"
#include "tests/support/Sessions.h"

#include <QDir>
#include <QSemaphore>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class PersistenceTest : public ModelTest
{
protected:
    /// What the extension does: writes a session and opens its link.
    QString putSession(const LintoraSession &session) const
    {
        QDir().mkpath(Locations::sessions());
        const QString path = Locations::sessions() + u"/0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.json"_s;
        AtomicFile file(path);
        file.write(session.encoded());
        file.commit();
        return path;
    }

    bool waitForSource(const QString &source)
    {
        return Events::waitFor([&] { return model->source() == source; });
    }

    /// Opens the session and waits until its version is there.
    QString open(const LintoraSession &session)
    {
        const QString path = putSession(session);
        model->receiveURL(LaunchLink::launchURL(path));
        settle();
        EXPECT_TRUE(waitForSource(session.source));
        return path;
    }
};

} // namespace

TEST_F(PersistenceTest, the_job_outlives_a_restart_whole)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"嗯，你好\nHello"_s},
              {.id = 2, .start = 900, .end = 1'800, .text = u"x"_s}});
    model->textTools().setRemoveFillers(true);
    model->textTools().clean();
    model->textTools().separateLanguages();
    model->selectTrack(model->visibleTracks()[1].id);
    model->setText(0, u"改"_s);
    const LintoraSession job = model->snapshot();
    restart();
    EXPECT_EQ(model->snapshot(), job);
    EXPECT_EQ(failure(), QString());
    EXPECT_EQ(model->undoTitle(), u"修改文字"_s);
    model->undo();
    EXPECT_EQ(texts(), QStringList({u"Hello"_s, u"x"_s}));
    restart();
    EXPECT_EQ(model->redoTitle(), u"修改文字"_s);
    model->redo();
    EXPECT_EQ(model->snapshot(), job);
    while (model->canUndo())
        model->undo();
    EXPECT_TRUE(model->items().isEmpty()) << "back to the first start";
}

TEST_F(PersistenceTest, what_is_typed_is_saved_without_a_quit)
{
    loadCues(Generator(1).cues(3));
    model->setText(1, u"刚打的字"_s);
    EXPECT_TRUE(Events::waitFor([&] {
        return QFile::exists(model->draftURL()) &&
               LintoraSession::read(model->draftURL()).items[1].text == u"刚打的字"_s;
    }));
}

TEST_F(PersistenceTest, says_whether_everything_is_saved)
{
    using Saving = LintoraModel::Saving;
    EXPECT_EQ(model->saving(), Saving::done);
    loadCues(Generator(1).cues(3));
    ASSERT_TRUE(Events::waitFor([&] { return model->saving() == Saving::done; }));
    int announced = 0;
    QObject::connect(model.get(), &LintoraModel::savingChanged, model.get(), [&] { ++announced; });
    model->setText(1, u"一"_s);
    EXPECT_EQ(model->saving(), Saving::underWay);
    model->setText(1, u"二"_s);
    ASSERT_TRUE(Events::waitFor([&] { return model->saving() == Saving::done; }));
    EXPECT_EQ(LintoraSession::read(model->draftURL()).items[1].text, u"二"_s) << "the newest";
    EXPECT_EQ(announced, 2);
    model->setText(1, QString(17'000'000, u'a')); // more than a draft holds
    ASSERT_TRUE(Events::waitFor([&] { return model->saving() == Saving::failing; }));
    model->setText(1, u"三"_s);
    EXPECT_EQ(model->saving(), Saving::failing) << "until it can be";
    ASSERT_TRUE(Events::waitFor([&] { return model->saving() == Saving::done; }));
}

TEST_F(PersistenceTest, starts_empty_and_silent_without_a_draft_that_can_be_read)
{
    const QString draft = Locations::draft();
    model.reset();
    QDir().mkpath(QFileInfo(draft).path());
    for (const QByteArray &bytes : {QByteArray("{"), QByteArray(16'777'217, ' '), QByteArray("{\"schema\":3}")}) {
        AtomicFile file(draft);
        file.write(bytes);
        file.commit();
        model = start();
        EXPECT_TRUE(model->items().isEmpty());
        EXPECT_EQ(model->message(), QString());
        EXPECT_EQ(failure(), QString());
        model.reset();
    }
}

TEST_F(PersistenceTest, an_oversize_draft_is_refused_and_the_last_one_stays)
{
    loadCues(Generator(1).cues(3));
    model->saveDraft();
    const QByteArray saved = read(model->draftURL());
    model->setText(0, QString(17'000'000, u'a'));
    model->saveDraft();
    EXPECT_EQ(model->message(), u"无法保存字幕草稿：字幕草稿过大，请导出 SRT 后分批处理"_s);
    EXPECT_EQ(read(model->draftURL()), saved);
    // It is said again after every change, whatever was said in between, until it is no longer true.
    model->setText(1, u"x"_s);
    model->reportFailure(u"别的"_s);
    Events::handle();
    EXPECT_EQ(model->message(), u"无法保存字幕草稿：字幕草稿过大，请导出 SRT 后分批处理"_s);
    EXPECT_EQ(failure(), u"别的"_s) << "a refusal is seen, and after it what lasts";
    model->report(u"好"_s);
    EXPECT_EQ(failure(), u"无法保存字幕草稿：字幕草稿过大，请导出 SRT 后分批处理"_s);
    model->setText(0, u"短"_s);
    EXPECT_TRUE(Events::waitFor([&] { return failure().isEmpty(); })) << "without anything else being done";
    EXPECT_EQ(model->message(), QString());
}

TEST_F(PersistenceTest, work_that_cannot_be_saved_is_not_lost_without_a_question)
{
    EXPECT_TRUE(model->requestQuit()) << "nothing is there to be lost";
    loadCues(Generator(1).cues(3));
    EXPECT_TRUE(model->requestQuit());
    const QString folder = QFileInfo(model->draftURL()).path();
    ASSERT_TRUE(QDir().rename(folder, folder + u"-aside"_s));
    ASSERT_TRUE(QFile(write(u"in-the-way"_s, "x")).rename(folder));
    model->setText(0, u"新"_s);
    bool ends = false;
    QObject::connect(model.get(), &LintoraModel::quitConfirmed, model.get(), [&] { ends = true; });
    EXPECT_FALSE(model->requestQuit());
    EXPECT_TRUE(model->quitQuestion() && model->quitQuestion()->startsWith(u"无法保存字幕草稿："_s));
    Events::handle();
    ASSERT_TRUE(model->quitQuestion()) << "saving that was on its way does not take the question back";
    EXPECT_EQ(model->quitQuestion(), failure());
    model->answerQuit(false);
    EXPECT_FALSE(model->quitQuestion() || ends);
    EXPECT_FALSE(model->requestQuit());
    model->answerQuit(true);
    EXPECT_TRUE(ends);
    EXPECT_FALSE(model->requestQuit());
    ASSERT_TRUE(QFile::remove(folder));
    model->reportFailure(u"设备中已没有剩余空间"_s); // of an export, for the same cause
    EXPECT_TRUE(model->requestQuit());
    EXPECT_EQ(model->quitQuestion(), std::nullopt);
    EXPECT_EQ(failure(), QString());
}

TEST_F(PersistenceTest, what_can_be_restored_keeps_the_job_in_use)
{
    EXPECT_FALSE(model->isInUse());
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"嗯"_s}});
    model->textTools().setRemoveFillers(true);
    model->textTools().clean();
    ASSERT_TRUE(model->items().isEmpty());
    EXPECT_TRUE(model->isInUse());
    restart();
    EXPECT_TRUE(model->isInUse());
    model->textTools().undoCleanup();
    EXPECT_EQ(texts(), QStringList{u"嗯"_s});
    model->deleteCues({0});
    EXPECT_TRUE(model->isInUse()) << "undoing brings it back";
    restart();
    EXPECT_TRUE(model->isInUse());
    ASSERT_TRUE(QFile::remove(QFileInfo(model->draftURL()).path() + u"/Draft.steps"_s));
    restart();
    EXPECT_FALSE(model->isInUse()) << "nothing does any more";
}

TEST_F(PersistenceTest, nothing_goes_into_a_session_before_its_version_has_arrived)
{
    const LintoraSession theirs = Sessions::uniform(u"扩展"_s);
    const QString path = putSession(theirs);
    SessionKeeper keeper(home(u"Draft.json"_s));
    keeper.watchSession(path);
    keeper.announceChange();
    keeper.saveSession(Sessions::uniform(u"别的稿子"_s));
    keeper.flushSession();
    EXPECT_EQ(read(path), theirs.encoded());
    bool hasArrived = false;
    QObject::connect(&keeper, &SessionKeeper::arrived, &keeper, [&] { hasArrived = true; });
    ASSERT_TRUE(Events::waitFor([&] { return hasArrived; }));
    keeper.saveSession(Sessions::uniform(u"我们"_s));
    keeper.flushSession();
    EXPECT_EQ(LintoraSession::read(path).source, u"我们"_s);
}

TEST_F(PersistenceTest, a_record_of_any_shape_becomes_a_job_in_order)
{
    const QList<Subtitle> cues = Generator(1).cues(3);
    LintoraSession old{.schema = 1, .items = cues, .source = u"旧"_s, .previousItems = cues, .cleaned = true};
    model->apply(old);
    ASSERT_EQ(model->tracks().size(), 1);
    EXPECT_EQ(model->tracks().first().items, cues);
    EXPECT_EQ(model->snapshot().schema, 2);
    model->textTools().undoCleanup();
    EXPECT_FALSE(model->cleaned());

    LintoraSession stray = Sessions::full();
    stray.selectedTrackID = QUuid::createUuid();
    model->apply(stray);
    EXPECT_EQ(model->selectedTrackID(), stray.tracks->first().id) << "the one that is not the original";
    stray.selectedTrackID = stray.splitOriginal;
    model->apply(stray);
    EXPECT_EQ(model->selectedTrackID(), stray.tracks->first().id);
    stray.tracks->removeFirst();
    model->apply(stray);
    EXPECT_FALSE(model->splitOriginal()) << "an only track is shown";
    stray.tracks = QList<SubtitleTrack>();
    stray.items.clear();
    model->apply(stray);
    EXPECT_FALSE(model->selectedTrackID());
    EXPECT_FALSE(model->splitOriginal());
    EXPECT_EQ(model->insertCue(-1), 0);
}

TEST_F(PersistenceTest, a_link_opens_its_session_and_both_sides_stay_one)
{
    model->toggleFloating();
    EXPECT_FALSE(model->window().pinned());
    model->reportFailure(u"旧"_s);
    const QString path = open(Sessions::uniform(u"extension 1"_s));
    EXPECT_EQ(model->message(), u"已载入"_s);
    EXPECT_EQ(failure(), QString());
    EXPECT_TRUE(model->window().pinned());
    EXPECT_EQ(model->sessionURL(), path);

    model->setText(0, u"本机"_s);
    EXPECT_TRUE(Events::waitFor([&] { return LintoraSession::read(path).items[0].text == u"本机"_s; }));
    putSession(Sessions::uniform(u"extension 2"_s));
    EXPECT_TRUE(waitForSource(u"extension 2"_s));
    model->undo();
    EXPECT_EQ(texts().first(), u"本机"_s) << "what came from outside is a step";
    EXPECT_TRUE(Events::waitFor([&] { return LintoraSession::read(path).items[0].text == u"本机"_s; }));
    EXPECT_TRUE(restart().window().pinned());
}

TEST_F(PersistenceTest, a_bad_link_changes_nothing)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    const QString path = putSession(Sessions::uniform(u"x"_s));
    const QString broken = Locations::sessions() + u"/11111111-2222-3333-4444-555555555555.json"_s;
    const std::pair<QUrl, QString> rows[] = {
        {QUrl(u"lintora://other?session=/x"_s), u"悬浮窗口链接无效。"_s},
        {LaunchLink::launchURL(home(u"a.json"_s)), u"字幕会话位置无效。"_s},
    };
    for (const auto &[link, sentence] : rows) {
        model->receiveURL(link);
        settle();
        EXPECT_EQ(failure(), sentence);
    }
    AtomicFile file(broken);
    file.write("{\"schema\":3}");
    file.commit();
    model->receiveURL(LaunchLink::launchURL(broken));
    settle();
    EXPECT_FALSE(failure().isEmpty());
    EXPECT_FALSE(model->sessionURL());
    EXPECT_EQ(model->snapshot(), before);
}

TEST_F(PersistenceTest, a_version_that_comes_while_a_job_owns_the_cues_waits_and_is_never_written_over)
{
    // Also when another tab is looked at meanwhile, and when the job is left to run into a quit.
    const std::function<void()> rows[] = {[] {}, [&] { model->selectTrack(model->tracks().last().id); },
                                          [&] { restart(); }};
    for (const auto &meanwhile : rows) {
        LintoraSession first = Sessions::full();
        first.splitOriginal.reset();
        first.source = u"extension 1"_s;
        LintoraSession second = first;
        second.source = u"extension 2"_s;
        const QString path = open(first);
        model->saveDraft();
        OwnedCues owned(*model);
        putSession(second);
        model->refreshSession();
        EXPECT_EQ(model->source(), u"extension 1"_s);
        meanwhile();
        Events::handle();
        owned.end();
        model->saveDraft();
        EXPECT_EQ(model->source(), u"extension 2"_s);
        EXPECT_EQ(LintoraSession::read(path).source, u"extension 2"_s);
    }
}

TEST_F(PersistenceTest, an_edit_made_on_the_arrival_of_a_version_is_written)
{
    const QString path = open(Sessions::uniform(u"extension 1"_s));
    const auto ear = QObject::connect(model.get(), &LintoraModel::itemsChanged, [&] {
        if (texts().first() == u"extension 2"_s)
            model->setText(0, u"正在打的字"_s);
    });
    putSession(Sessions::uniform(u"extension 2"_s));
    EXPECT_TRUE(Events::waitFor([&] { return LintoraSession::read(path).items[0].text == u"正在打的字"_s; }));
    QObject::disconnect(ear);
}

TEST_F(PersistenceTest, undoing_beyond_the_opening_of_a_session_leaves_the_session_alone)
{
    loadCues(Generator(1).cues(3));
    const QString path = open(Sessions::uniform(u"extension 1"_s));
    model->undo();
    EXPECT_EQ(model->source(), u"片段.srt"_s);
    model->saveDraft();
    EXPECT_EQ(LintoraSession::read(path).source, u"extension 1"_s);
    model->redo();
    model->setText(0, u"又在"_s);
    model->saveDraft();
    EXPECT_EQ(LintoraSession::read(path).items[0].text, u"又在"_s);

    // An edit there is the other session's; the extension's next version is taken up all the same.
    model->undo();
    model->undo();
    model->setText(0, u"别的工作"_s);
    model->setText(1, u"还是别的"_s);
    model->saveDraft();
    EXPECT_EQ(LintoraSession::read(path).source, u"extension 1"_s);
    putSession(Sessions::uniform(u"extension 2"_s));
    EXPECT_TRUE(waitForSource(u"extension 2"_s));
    model->setText(0, u"回来了"_s);
    model->saveDraft();
    EXPECT_EQ(LintoraSession::read(path).items[0].text, u"回来了"_s);
}

TEST_F(PersistenceTest, two_models_share_one_session)
{
    const QString path = open(Sessions::uniform(u"extension"_s));
    // The other program is played by a second model with a draft of its own.
    LintoraModel other({.draftURL = home(u"other.json"_s),
                        .settings = std::make_shared<QSettings>(home(u"other.ini"_s), QSettings::IniFormat)});
    other.receiveURL(LaunchLink::launchURL(path));
    EXPECT_TRUE(Events::waitFor([&] { return other.source() == u"extension"_s; }));
    Generator generator(4);
    for (int round = 0; round < 6; ++round) {
        LintoraModel &writer = round % 2 == 0 ? *model : other;
        const LintoraModel &reader = round % 2 == 0 ? other : *model;
        writer.setText(generator.number(0, 19), u"第 %1 轮"_s.arg(round));
        EXPECT_TRUE(Events::waitFor([&] { return reader.snapshot() == writer.snapshot(); })) << round;
    }
    // Both at once: one of the two prevails, on both sides, and the other one can be undone to where it was written.
    model->setText(0, u"甲"_s);
    other.setText(0, u"乙"_s);
    EXPECT_TRUE(Events::waitFor([&] { return other.snapshot() == model->snapshot(); }));
    LintoraModel &winner = other.items()[0].text == u"甲"_s ? *model : other;
    EXPECT_TRUE(winner.canUndo());
    EXPECT_EQ(LintoraSession::read(path).items[0].text, model->items()[0].text);
}

TEST_F(PersistenceTest, quitting_does_not_wait_for_a_read_that_hangs)
{
    loadCues(Generator(1).cues(3));
    const QByteArray pipe = home(u"hung"_s).toUtf8();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    QSemaphore begun;
    model->ownCues(
        u"正在读取…"_s,
        [&begun, path = QString::fromUtf8(pipe)](Job & /*job*/, const ProgressReport & /*report*/) {
            begun.release();
            return FileReader::readAll(path).size();
        },
        [](qsizetype /*size*/) {});
    begun.acquire();
    restart();
    EXPECT_EQ(model->items().size(), 3);
    // Lets the reader end, which has nobody left to tell.
    const int writer = ::open(pipe.constData(), O_WRONLY | O_NONBLOCK);
    EXPECT_GE(writer, 0) << "it was waiting";
    ::close(writer);
}
