#include "app/model/ai/Recognition.h"

#include "store/LaunchLink.h"
#include "store/Locations.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/ModelTest.h"
#include "tests/support/Sessions.h"
#include "tests/support/StoryDocument.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// The answer of a recogniser that hears two phrases: one in the first second, one in the fifth.
const QString twoPhrases =
    uR"(result {"transcription":[{"offsets":{"from":0,"to":1000},"text":"大家好"},{"offsets":{"from":4000,"to":5000},"text":"欢迎回来"}]})"_s;

class RecognitionTest : public ModelTest
{
protected:
    RecognitionTest()
    {
        AIChoices choices = model->aiSettings().choices();
        choices.aiSpeechModelFile = write(u"ggml.bin"_s, "model");
        choices.aiTextModelFile = write(u"qwen.gguf"_s, "model");
        model->aiSettings().choose(choices);
        helpers.script(u"ffmpeg-audio"_s, {u"wav 4 1"_s}); // four seconds of silence, one that sounds
        helpers.script(u"whisper-cli"_s, {twoPhrases});
        helpers.script(u"llama-server"_s, {u"health 200"_s, u"completion echo"_s, u"serve"_s});
    }

    ~RecognitionTest() override
    {
        model.reset();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    Recognition &recognition() { return model->recognition(); }

    void choose(const std::function<void(AIChoices &)> &change)
    {
        AIChoices choices = model->aiSettings().choices();
        change(choices);
        model->aiSettings().choose(choices);
    }

    void begin()
    {
        recognition().setMedia(QUrl::fromLocalFile(home(u"访谈.mov"_s)));
        recognition().start();
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model->aiBusy(); }));
        Events::handle();
        EXPECT_FALSE(recognition().isRunning());
    }

    void recognize()
    {
        begin();
        finish();
    }

    /// A project whose files, "talk" and "music", are those paths.
    QByteArray project(const QString &talk, const QString &music) const
    {
        QByteArray document =
            StoryDocument::project("20s", {tag("asset-clip name=采访 ref=talk offset=0s duration=10s"),
                                           tag("asset-clip name=音乐 ref=music offset=10s duration=10s")});
        document.replace("/m/talk.mov", QUrl::fromLocalFile(talk).path(QUrl::FullyEncoded).toUtf8());
        document.replace("/m/music.mov", QUrl::fromLocalFile(music).path(QUrl::FullyEncoded).toUtf8());
        return document;
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(RecognitionTest, a_medium_that_comes_in_is_not_read_but_offered)
{
    load(home(u"B-CAM.MOV"_s));
    EXPECT_TRUE(model->window().aiPresented());
    EXPECT_EQ(model->window().aiMode(), WindowState::AIMode::speech);
    EXPECT_EQ(recognition().aiMedia(), QUrl::fromLocalFile(home(u"B-CAM.MOV"_s)));
    EXPECT_EQ(recognition().title(recognition().source()), u"B-CAM.MOV"_s);
    EXPECT_EQ(failure(), QString()) << "the file is not there, which nobody has looked at";
    EXPECT_FALSE(model->aiBusy());
}

TEST_F(RecognitionTest, ends_with_a_new_track_beside_the_others_as_one_step)
{
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"旧的字幕"_s}});
    const LintoraSession before = model->snapshot();
    recognize();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"欢迎回来"_s}));
    ASSERT_EQ(model->tracks().size(), 2);
    EXPECT_EQ(model->tracks().first(), before.tracks->first());
    EXPECT_EQ(model->tracks().last().label, u"中文 2"_s);
    EXPECT_EQ(model->source(), before.source);
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).first()[1], home(u"ggml.bin"_s));
    QStringList stages;
    for (const WorkStages::Stage &stage : model->aiWork().stages().all())
        stages += stage.endedMS ? stage.what : u"…"_s;
    // One that is over within a moment may not have been told.
    EXPECT_EQ(stages.value(0), u"正在准备…"_s);
    EXPECT_EQ(stages.value(stages.size() - 1), u"正在识别语音，较长素材需要一些时间…"_s);
    model->undo();
    EXPECT_EQ(model->snapshot(), before);
}

TEST_F(RecognitionTest, the_first_track_bears_the_name_of_its_file)
{
    recognize();
    EXPECT_EQ(model->source(), u"访谈.mov"_s);
    EXPECT_EQ(model->tracks().first().label, u"中文"_s);
    model->undo();
    EXPECT_TRUE(model->tracks().isEmpty());
}

TEST_F(RecognitionTest, what_cannot_be_recognised_is_told_and_changes_nothing)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    recognition().start();
    EXPECT_EQ(failure(), u"请先选择音视频，或接入 FCP 时间线。"_s);
    struct Row
    {
        const char *name;
        std::function<void()> spoil;
        QString sentence;
    };
    const Row rows[] = {
        {"nothing is said", [&] { helpers.script(u"whisper-cli"_s, {uR"(result {"transcription":[]})"_s}); },
         u"未识别到有效语音。请确认素材有人声并选择正确语言。"_s},
        {"the recogniser fails", [&] { helpers.script(u"whisper-cli"_s, {u"exit 3"_s}); },
         u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。"_s},
        {"no sound", [&] { helpers.script(u"ffmpeg-audio"_s, {u"wav 0"_s}); },
         u"音轨没有可识别的采样，请确认文件可正常播放。"_s},
        {"a model that is not there", [&] { choose([](AIChoices &choices) { choices.aiSpeechModelFile.clear(); }); },
         u"请先下载所选语音模型。"_s},
        {"a service that is not safe",
         [&] {
             choose([](AIChoices &choices) {
                 choices.aiUseCloudSpeech = true;
                 choices.aiSpeechBaseURL = u"http://example.com/v1"_s;
             });
         },
         u"音频转写地址需使用 HTTPS；本机服务可使用 localhost 或 127.0.0.1。"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        row.spoil();
        recognize();
        EXPECT_EQ(failure(), row.sentence);
        EXPECT_EQ(model->snapshot(), before);
    }
}

TEST_F(RecognitionTest, a_cancel_is_felt_at_once_at_every_stage_and_leaves_nothing)
{
    loadCues(Generator(1).cues(3));
    const LintoraSession before = model->snapshot();
    choose([](AIChoices &choices) { choices.aiAutomaticReview = true; });
    struct Row
    {
        QString helper;
        QStringList script;
        int processes; ///< So many run by then, in all.
    };
    const Row rows[] = {{u"ffmpeg-audio"_s, {u"wait"_s}, 1},
                        {u"whisper-cli"_s, {u"ignore"_s, u"child"_s, u"wait"_s}, 4},
                        {u"llama-server"_s, {u"health hang"_s, u"serve"_s}, 7}};
    const QStringList scripts[] = {{u"wav 4 1"_s}, {twoPhrases}, {}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].helper.toStdString());
        helpers.script(rows[i].helper, rows[i].script);
        begin();
        ASSERT_TRUE(helpers.waitForProcesses(rows[i].processes));
        model->cancelAI();
        EXPECT_FALSE(model->aiBusy());
        EXPECT_FALSE(recognition().isRunning());
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(failure(), QString());
        EXPECT_EQ(model->snapshot(), before);
        if (!scripts[i].isEmpty())
            helpers.script(rows[i].helper, scripts[i]);
    }
}

TEST_F(RecognitionTest, a_proofread_text_stands_beside_the_recognisers_own)
{
    choose([](AIChoices &choices) { choices.aiAutomaticReview = true; });
    recognize();
    EXPECT_EQ(texts(), (QStringList{u"译大家好"_s, u"译欢迎回来"_s}));
    const auto &proofread = recognition().proofread();
    ASSERT_TRUE(proofread);
    EXPECT_EQ(proofread->trackID, model->selectedTrackID());
    EXPECT_EQ(proofread->recognised.first().text, u"大家好"_s);
    EXPECT_EQ(proofread->reviewed, model->items());

    helpers.script(u"llama-server"_s, {u"exit 1"_s});
    recognize();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"欢迎回来"_s}));
    EXPECT_EQ(failure(), u"字幕已生成；自动校对未完成，已保留识别原稿。"_s);
    EXPECT_FALSE(recognition().proofread());
}

TEST_F(RecognitionTest, a_timeline_says_what_will_not_be_heard_and_can_go_without_missing_files)
{
    helpers.script(u"ffmpeg-audio"_s, {u"wav 0 20"_s});
    const QString talk = write(u"talk.mov"_s, "x");
    load(write(u"p.fcpxml"_s, project(talk, home(u"gone.mov"_s))));
    EXPECT_EQ(recognition().source(), Recognition::Source::timeline);
    EXPECT_EQ(recognition().title(recognition().source()), u"FCP 时间线 · Film"_s);
    ASSERT_TRUE(Events::waitFor([&] { return !recognition().missingMedia().isEmpty(); }));
    EXPECT_EQ(recognition().missingMedia(), QStringList{home(u"gone.mov"_s)});
    EXPECT_EQ(recognition().notices(), QStringList{u"1 个媒体文件找不到：gone.mov"_s});

    recognition().start();
    finish();
    EXPECT_EQ(failure(), u"找不到片段原始音视频，请先在 FCP 重新连接媒体。"_s);
    recognition().setLeavesOutMissing(true);
    recognition().start();
    finish();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"欢迎回来"_s}));
    EXPECT_EQ(model->source(), u"Film"_s);

    write(u"gone.mov"_s, "x");
    recognition().findMissing();
    EXPECT_TRUE(Events::waitFor([&] { return recognition().missingMedia().isEmpty(); }));
    EXPECT_FALSE(recognition().leavesOutMissing());
}

TEST_F(RecognitionTest, the_source_is_what_came_last_and_can_be_chosen_again)
{
    load(write(u"p.fcpxml"_s, project(write(u"talk.mov"_s, "x"), write(u"music.mov"_s, "x"))));
    load(home(u"a.wav"_s));
    EXPECT_EQ(recognition().source(), Recognition::Source::media);
    recognition().setSource(Recognition::Source::timeline);
    EXPECT_EQ(recognition().source(), Recognition::Source::timeline);
    load(write(u"mute.fcpxml"_s, StoryDocument::project("5s", {tag("asset-clip ref=mute offset=0s duration=5s")})));
    EXPECT_EQ(recognition().source(), Recognition::Source::media) << "of this one nothing can be heard";
    EXPECT_EQ(model->message(), u"已匹配项目；没有发现可识别音轨"_s);
    recognition().setSource(Recognition::Source::timeline);
    EXPECT_EQ(recognition().source(), Recognition::Source::media);
}

TEST_F(RecognitionTest, invented_cues_are_marked_and_go_only_when_they_are_taken_away)
{
    recognize();
    const QList<Subtitle> recognised = model->items();
    SuspectMarks &suspects = model->suspects();
    EXPECT_EQ(model->message(), u"已识别 2 条字幕 · 1 条可疑，请核对"_s);
    EXPECT_EQ(suspects.count(), 1);
    EXPECT_EQ(suspects.next(-1), 0) << "nothing sounds in the first four seconds";
    EXPECT_EQ(suspects.next(0), 0);
    EXPECT_EQ(suspects.reasons(recognised[0]), SuspectCue::Reason::silence);
    EXPECT_FALSE(suspects.reasons(recognised[1]));
    EXPECT_TRUE(suspects.isTicked(recognised[0]));

    suspects.setTicked(recognised[0], false);
    suspects.removeTicked();
    EXPECT_EQ(model->items(), recognised);
    suspects.setTicked(recognised[0], true);
    suspects.removeTicked();
    EXPECT_EQ(texts(), QStringList{u"欢迎回来"_s});
    EXPECT_EQ(model->message(), u"已移除 1 条可疑字幕，可撤销"_s);
    EXPECT_EQ(suspects.count(), 0);
    model->undo();
    EXPECT_EQ(model->items(), recognised);
    EXPECT_EQ(suspects.count(), 1);
    model->setText(0, u"这一句听清了"_s);
    EXPECT_EQ(suspects.count(), 0) << "a person has written it";
}

TEST_F(RecognitionTest, a_version_of_the_session_that_comes_meanwhile_is_not_lost)
{
    const auto put = [](const LintoraSession &session) {
        QDir().mkpath(Locations::sessions());
        const QString path = Locations::sessions() + u"/0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0.json"_s;
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(session.encoded());
        return path;
    };
    model->receiveURL(LaunchLink::launchURL(put(Sessions::uniform(u"extension 1"_s))));
    ASSERT_TRUE(Events::waitFor([&] { return model->source() == u"extension 1"; }));
    settle();
    helpers.script(u"whisper-cli"_s, {u"wait"_s});
    begin();
    ASSERT_TRUE(helpers.waitForProcesses(2));
    put(Sessions::uniform(u"extension 2"_s));
    model->refreshSession();
    EXPECT_EQ(model->source(), u"extension 1"_s) << "the cues have an owner";
    model->load(QUrl::fromLocalFile(home(u"a.srt"_s)));
    EXPECT_EQ(failure(), u"任务处理中，请先取消再切换文件"_s);
    model->cancelAI();
    EXPECT_TRUE(Events::waitFor([&] { return model->source() == u"extension 2"; }));

    helpers.script(u"whisper-cli"_s, {twoPhrases});
    begin();
    put(Sessions::uniform(u"extension 3"_s));
    model->refreshSession();
    finish();
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"欢迎回来"_s}));
    model->undo();
    EXPECT_EQ(model->source(), u"extension 3"_s) << "one step back";
}

TEST_F(RecognitionTest, a_quit_ends_the_helpers_and_keeps_the_cues)
{
    loadCues(Generator(1).cues(3));
    const QStringList before = texts();
    helpers.script(u"whisper-cli"_s, {u"child away"_s, u"wait"_s});
    begin();
    ASSERT_TRUE(helpers.waitForProcesses(3));
    EXPECT_FALSE(model->requestQuit()) << "an hour of work may be lost";
    bool ends = false;
    QObject::connect(model.get(), &LintoraModel::quitConfirmed, [&] { ends = true; });
    model->answerQuit(true);
    EXPECT_TRUE(ends);
    restart();
    EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
    EXPECT_EQ(texts(), before);
}
