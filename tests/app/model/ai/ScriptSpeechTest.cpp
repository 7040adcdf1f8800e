#include "app/model/ai/ScriptSpeech.h"

#include "tests/support/CommandLine.h"
#include "tests/support/Events.h"
#include "tests/support/HeardWords.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/ModelTest.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/StoryDocument.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

const QString threeLines = u"大家好！\n欢迎回来，今天我们讲调色。\n这一句没有人说"_s;

class ScriptSpeechTest : public ModelTest
{
protected:
    ScriptSpeechTest()
    {
        choose([&](AIChoices &choices) { choices.aiSpeechModelFile = write(u"ggml.bin"_s, "model"); });
        helpers.script(u"ffmpeg-audio"_s, {u"wav 4 4"_s}); // silence, then sound
        helpers.script(u"whisper-cli"_s, {recognised});
        model->scriptMatching().setText(threeLines);
    }

    ~ScriptSpeechTest() override
    {
        model.reset();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    ScriptSpeech &speech() { return model->scriptSpeech(); }

    void choose(const std::function<void(AIChoices &)> &change)
    {
        AIChoices choices = model->aiSettings().choices();
        change(choices);
        model->aiSettings().choose(choices);
    }

    void begin()
    {
        if (model->recognition().source() == Recognition::Source::none)
            model->recognition().setMedia(QUrl::fromLocalFile(write(u"访谈.mov"_s, "x")));
        speech().start();
    }

    /// Until what was heard has been put under the script.
    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model->aiBusy() && !speech().task().isRunning(); }));
        Events::handle();
        EXPECT_FALSE(speech().isRunning());
    }

    void hear()
    {
        begin();
        finish();
    }

    static std::string described(const QJsonObject &result) { return QJsonDocument(result).toJson().toStdString(); }

    /// The result as the command line tells one.
    std::string described() const
    {
        const ScriptTimingResult &result = model->scriptSpeech().result();
        QJsonArray items;
        for (const TimedCue &each : result.cues)
            items += QJsonObject{
                {u"id"_s, each.cue.id},     {u"start"_s, each.cue.start},       {u"end"_s, each.cue.end},
                {u"text"_s, each.cue.text}, {u"confidence"_s, each.confidence}, {u"unsure"_s, each.isUnsure}};
        QJsonArray unspoken;
        for (const UnspokenPassage &each : result.unspoken)
            unspoken += QJsonObject{{u"cue"_s, each.cueID}, {u"text"_s, each.text}};
        QJsonArray unscripted;
        for (const Subtitle &each : result.unscripted)
            unscripted += QJsonObject{{u"start"_s, each.start}, {u"end"_s, each.end}, {u"text"_s, each.text}};
        return described({{u"items"_s, items}, {u"unspoken"_s, unspoken}, {u"unscripted"_s, unscripted}});
    }

    const HeardWords words =
        HeardWords().say(u"大家好"_s, 400).say(u"刚才电话响了"_s, 1'400).say(u"欢迎回来今天我们讲调色"_s, 4'100);
    const QString recognised = u"result "_s + QString::fromUtf8(words.fullJson());
    HelperFolder helpers;
};

} // namespace

TEST_F(ScriptSpeechTest, gives_the_same_cues_as_the_command_line)
{
    const ScriptedServer server(
        [&](const ScriptedServer::Request &) { return ScriptedServer::reply(200, words.answer()); });
    qputenv("LINTORA_TEST_KEY", "secret");
    const QString media = write(u"访谈.mov"_s, "x");
    QByteArray document = StoryDocument::project("8s", {tag("asset-clip name=采访 ref=talk offset=0s duration=8s")});
    document.replace("/m/talk.mov", QUrl::fromLocalFile(media).path(QUrl::FullyEncoded).toUtf8());
    const QString project = write(u"p.fcpxml"_s, document);
    const QStringList local = {u"--model-file"_s, model->aiSettings().choices().aiSpeechModelFile};
    struct Row
    {
        QString source;
        QStringList listener;
    };
    const QStringList online = {
        u"--api"_s, server.url(u"/v1"_s).toString(), u"--api-model"_s, u"w"_s, u"--key-env"_s, u"LINTORA_TEST_KEY"_s};
    const Row rows[] = {{media, local}, {media, online}, {project, local}};
    for (const Row &row : rows) {
        SCOPED_TRACE((row.source + row.listener.join(u' ')).toStdString());
        load(row.source);
        choose([&](AIChoices &choices) {
            choices.aiUseCloudSpeech = row.listener != local;
            choices.aiSpeechBaseURL = server.url(u"/v1"_s).toString();
            choices.aiSpeechAPIModel = u"w"_s;
        });
        model->aiSettings().setKey(AISettings::Service::speech, u"secret"_s);
        hear();
        EXPECT_EQ(speech().result().cues.size(), 3) << failure().toStdString() << speech().status().toStdString();
        EXPECT_EQ(speech().result().cues.value(1).cue.start, 4'000) << "where the sound begins";
        EXPECT_EQ(speech().result().unspoken.value(0).cueID, 3);
        EXPECT_EQ(speech().result().unscripted.value(0).text, u"刚才电话响了"_s);
        const auto timed = CommandLine::run(
            QStringList{u"time"_s, write(u"文稿.txt"_s, threeLines.toUtf8()), row.source, u"--json"_s} + row.listener);
        EXPECT_EQ(described(), described(QJsonDocument::fromJson(timed.output).object())) << timed.error.toStdString();
    }
    EXPECT_EQ(server.requests().size(), 1) << "the answer is kept until the cues are where the person finds them";
}

TEST_F(ScriptSpeechTest, changes_nothing_before_it_is_applied_as_a_track_of_its_own)
{
    loadTexts({u"旧的字幕"_s});
    hear();
    EXPECT_EQ(texts(), QStringList{u"旧的字幕"_s});
    EXPECT_EQ(speech().status(), u"3 条字幕 · 1 条时间待核对"_s);
    model->setText(0, u"改过的字幕"_s);
    ASSERT_TRUE(speech().canApply()) << "the new track takes nothing from the others";
    const LintoraSession before = model->snapshot();
    speech().apply();
    ASSERT_EQ(model->tracks().size(), 2);
    EXPECT_EQ(model->tracks().first(), before.tracks->first());
    EXPECT_EQ(texts().join(u'\n'), threeLines);
    EXPECT_EQ(model->message(), u"已按文稿生成 3 条字幕 · 1 条时间待核对"_s);
    model->undo();
    EXPECT_EQ(model->snapshot(), before) << "one step";
}

TEST_F(ScriptSpeechTest, marks_what_is_unsure_until_a_person_has_judged_it)
{
    hear();
    speech().apply();
    SuspectMarks &suspects = model->suspects();
    EXPECT_TRUE(suspects.areAboutTimes());
    EXPECT_EQ(suspects.next(-1), 2);
    EXPECT_EQ(SuspectCues::sentence(*suspects.reasons(model->items()[2])), u"没有听清，时间请核对"_s);
    EXPECT_EQ(suspects.tickedCount(), 0);
    model->setTimes(2, 7'500, 7'900);
    EXPECT_EQ(suspects.count(), 0);
    model->undo();
    EXPECT_EQ(suspects.count(), 1);
    suspects.dismiss(model->items()[2]);
    EXPECT_EQ(suspects.count(), 0);
    EXPECT_FALSE(suspects.areAboutTimes());
}

TEST_F(ScriptSpeechTest, hears_once_and_follows_the_script_the_width_and_the_rate)
{
    hear();
    model->scriptMatching().setText(u"欢迎回来今天我们讲调色"_s);
    EXPECT_FALSE(speech().canApply()) << "the list is about another script";
    finish();
    EXPECT_EQ(speech().result().cues.size(), 1);
    speech().setColumns(6);
    finish();
    EXPECT_EQ(speech().result().cues.size(), 2);
    Options options = model->options();
    options.rate = FrameRate::all()[2]; // 25
    model->setOptions(options);
    finish();
    EXPECT_EQ(speech().result().cues.last().cue.end % 40, 0);
    model->scriptMatching().setText(u"completely unrelated"_s);
    finish();
    EXPECT_TRUE(speech().isRefused());
    EXPECT_EQ(speech().status(), u"文稿与声音没有对应的内容，请确认语言和段落一致。"_s);
    EXPECT_FALSE(speech().canApply());
    model->scriptMatching().setText(threeLines);
    finish();
    EXPECT_TRUE(speech().canApply());
    EXPECT_EQ(helpers.runs(u"whisper-cli"_s).size(), 1);
}

TEST_F(ScriptSpeechTest, says_why_it_cannot_be_done_and_changes_nothing)
{
    loadTexts({u"旧的字幕"_s});
    const LintoraSession before = model->snapshot();
    speech().start();
    EXPECT_EQ(speech().status(), u"请先选择音视频，或接入 FCP 时间线。"_s);
    model->scriptMatching().setText(u" \n"_s);
    begin();
    EXPECT_EQ(speech().status(), u"请先粘贴文稿正文"_s);
    EXPECT_FALSE(model->aiBusy());
    model->scriptMatching().setText(threeLines);

    helpers.script(u"whisper-cli"_s, {u"exit 3"_s});
    hear();
    EXPECT_EQ(failure(), u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。"_s);
    helpers.script(u"whisper-cli"_s, {uR"(result {"transcription":[]})"_s});
    hear();
    EXPECT_EQ(speech().status(), u"声音里没有识别到词语，无法为文稿定时。"_s);
    speech().apply();
    EXPECT_EQ(model->snapshot(), before);
}

TEST_F(ScriptSpeechTest, a_cancel_and_a_quit_leave_nothing_but_what_was_there)
{
    hear();
    const ScriptTimingResult result = speech().result();
    helpers.script(u"whisper-cli"_s, {u"child"_s, u"wait"_s});
    begin();
    ASSERT_TRUE(helpers.waitForProcesses(5));
    EXPECT_FALSE(speech().canApply());
    model->scriptMatching().setText(threeLines + u"\n还有一句"_s);
    model->cancelAI();
    EXPECT_FALSE(speech().isRunning());
    finish();
    EXPECT_EQ(speech().result().cues.size(), result.cues.size() + 1) << "what was heard before serves on";
    EXPECT_TRUE(speech().canApply());

    begin();
    ASSERT_TRUE(helpers.waitForProcesses(8));
    EXPECT_FALSE(model->requestQuit()) << "it asks first";
    model->answerQuit(true);
    restart();
    EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
    EXPECT_TRUE(texts().isEmpty());
}
