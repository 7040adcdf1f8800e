// The sheet of speech recognition, and what it leaves in the window.

#include "app/Lintora/ai/SpeechSheet.h"

#include "ai/HelperPrograms.h"
#include "app/Lintora/ai/WorkView.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "core/ConversionError.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/SharedData.h"
#include "tests/support/TestModels.h"

#include <QApplication>
#include <QMimeData>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString twoPhrases =
    uR"(result {"transcription":[{"offsets":{"from":0,"to":1000},"text":"大家好"},{"offsets":{"from":4000,"to":5000},"text":"欢迎回来"}]})"_s;

class SpeechInPanel : public PanelTest
{
protected:
    SpeechInPanel()
    {
        AIChoices choices = model.aiSettings().choices();
        choices.aiSpeechModelFile = outside.file(u"ggml.bin"_s, "model").toLocalFile();
        model.aiSettings().choose(choices);
        helpers.script(u"ffmpeg-audio"_s, {u"wav 4 1"_s});
        helpers.script(u"whisper-cli"_s, {twoPhrases});
    }

    ~SpeechInPanel() override
    {
        model.shutdownAI();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
    }

    SpeechSheet *sheet() const
    {
        auto *const found = panel->findChild<SpeechSheet *>();
        return found && found->isVisible() ? found : nullptr;
    }

    void drop(const QString &name)
    {
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile(outside.path(name))});
        EXPECT_TRUE(model.receive(files));
        Events::handle();
    }

    /// Starts it, with a recogniser that goes on until it is ended.
    void startEndless()
    {
        helpers.script(u"whisper-cli"_s, {u"print [00:00:00.000 --> 00:00:02.500]  大家好"_s, u"wait"_s});
        drop(u"访谈.mov"_s);
        click(u"开始识别"_s);
        ASSERT_TRUE(helpers.waitForProcesses(2));
    }

    QString label(const QString &name) const
    {
        const auto *const found = find<QLabel>(name);
        return found ? found->text() : QString();
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.aiBusy(); }));
        Events::handle();
    }

    HelperFolder helpers;
};

/// The window with the programs that users have, and models so small that what they say means nothing.
class RealEnginesInPanel : public PanelTest
{
protected:
    void SetUp() override
    {
        try {
            for (const QString &name : {u"ffmpeg-audio"_s, u"whisper-cli"_s, u"llama-server"_s})
                LocalModels::helper(name);
        } catch (const ConversionError &error) {
            GTEST_SKIP() << "the engines are not installed: " << error.detail().toStdString();
        }
        const auto speech = TestModels::find(u"scripted-zh.bin"_s);
        const auto text = TestModels::find(u"stories260K-ctx32k.gguf"_s);
        if (!speech || !text || !SharedData::find(u"samples"_s))
            GTEST_SKIP() << "no models or samples";
        AIChoices choices = model.aiSettings().choices();
        choices.aiSpeechModelFile = *speech;
        choices.aiTextModelFile = *text;
        model.aiSettings().choose(choices);
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.aiBusy(); }));
        Events::handle();
    }
};

} // namespace

TEST_F(RealEnginesInPanel, make_cues_of_a_video_a_card_of_the_cues_and_another_language)
{
    model.load(QUrl::fromLocalFile(*SharedData::find(u"samples/video-2audio.mkv"_s)));
    Events::handle();
    click(u"开始识别"_s);
    finish();
    ASSERT_FALSE(texts().isEmpty()) << qPrintable(status());
    EXPECT_TRUE(texts().first().startsWith(u"你好"));
    const auto card = model.payload(std::nullopt);
    ASSERT_TRUE(card);
    EXPECT_TRUE(card->contains("你好"));

    const QList<Subtitle> recognised = model.items();
    click(u"翻译"_s);
    click(u"开始翻译"_s);
    finish();
    // A model of this size may well answer with nonsense, which is refused.
    ASSERT_EQ(model.tracks().first().items, recognised);
    if (model.tracks().size() == 1) {
        EXPECT_TRUE(status().startsWith(u"翻译")) << qPrintable(status());
    } else {
        ASSERT_EQ(model.items().size(), recognised.size());
        EXPECT_EQ(model.items().first().start, recognised.first().start);
    }
}

TEST_F(SpeechInPanel, a_dropped_file_becomes_cues_by_one_click)
{
    drop(u"访谈.mov"_s);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(find<ChoiceBox>(u"来源"_s)->currentText(), u"访谈.mov"_s);
    EXPECT_EQ(find<ChoiceBox>(u"识别方式"_s)->currentText(), u"本机 · ggml.bin"_s);
    click(u"开始识别"_s);
    finish();
    EXPECT_EQ(sheet(), nullptr) << "what is to be looked at now are the cues";
    EXPECT_EQ(texts(), (QStringList{u"大家好"_s, u"欢迎回来"_s}));
    EXPECT_EQ(status(), u"已识别 2 条字幕 · 1 条可疑，请核对"_s);
}

TEST_F(SpeechInPanel, is_reached_by_the_keyboard_alone)
{
    load({u"旧"_s});
    QAbstractButton *const action = button(u"语音识别"_s);
    ASSERT_NE(action, nullptr);
    action->setFocus();
    press(Qt::Key_Space);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_FALSE(button(u"开始识别"_s)->isEnabled()) << "there is no source";
    EXPECT_EQ(QApplication::focusWidget(), button(u"选择文件…"_s));
    outside.answer = outside.path(u"a.wav"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(outside.openings, QStringList{u"选择音视频"_s});
    auto *const language = find<ChoiceBox>(u"语言"_s);
    language->setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(language->currentText(), u"中文"_s);
    button(u"开始识别"_s)->setFocus();
    press(Qt::Key_Return);
    finish();
    EXPECT_EQ(model.tracks().size(), 2);
    EXPECT_TRUE(helpers.runs(u"whisper-cli"_s).first().contains(u"zh"_s));
}

TEST_F(SpeechInPanel, shows_how_far_it_is_and_ends_at_a_click)
{
    startEndless();
    ASSERT_TRUE(Events::waitFor([&] { return model.aiWork().stages().progress().share == 0.5; }));
    EXPECT_EQ(label(u"正在进行"_s), u"正在识别语音，较长素材需要一些时间…"_s);
    EXPECT_TRUE(label(u"已完成的步骤"_s).contains(u"正在准备…   0:0"_s));
    EXPECT_TRUE(label(u"用时"_s).startsWith(u"已用 0:0"_s));
    EXPECT_EQ(button(u"开始识别"_s), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), find<WorkView>({})->focusProxy()) << "the keyboard is on what ends it";
    EXPECT_FALSE(find<ChoiceBox>(u"来源"_s)->isEnabled());
    click(u"取消"_s);
    EXPECT_FALSE(model.aiBusy());
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), button(u"开始识别"_s));
    EXPECT_TRUE(texts().isEmpty());
}

TEST_F(SpeechInPanel, goes_on_while_the_sheet_is_closed)
{
    startEndless();
    press(Qt::Key_Escape);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_TRUE(model.aiBusy());
    EXPECT_TRUE(status().startsWith(u"正在识别语音"_s));
    click(u"语音识别"_s);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(button(u"开始识别"_s), nullptr);
    press(Qt::Key_Escape);
    click(u"取消"_s);
    EXPECT_FALSE(model.aiBusy());
}

TEST_F(SpeechInPanel, goes_on_while_the_window_is_closed)
{
    startEndless();
    window.close();
    EXPECT_TRUE(model.aiBusy());
    window.show();
    Events::handle();
    EXPECT_NE(sheet(), nullptr);
    model.cancelAI();
}

TEST_F(SpeechInPanel, a_refusal_is_told_in_sight_and_the_sheet_stays)
{
    helpers.script(u"whisper-cli"_s, {uR"(result {"transcription":[]})"_s});
    drop(u"访谈.mov"_s);
    click(u"开始识别"_s);
    finish();
    EXPECT_NE(sheet(), nullptr);
    EXPECT_EQ(status(), u"未识别到有效语音。请确认素材有人声并选择正确语言。"_s);
    EXPECT_TRUE(button(u"开始识别"_s)->isEnabled());
}

TEST_F(SpeechInPanel, says_what_leaves_this_machine_and_to_whom)
{
    drop(u"访谈.mov"_s);
    const auto notes = [&] {
        QStringList texts;
        for (const QLabel *const each : sheet()->findChildren<QLabel *>()) {
            if (each->isVisible())
                texts += each->text();
        }
        return texts.join(u'\n');
    };
    EXPECT_FALSE(notes().contains(u"发送"_s));
    AIChoices choices = model.aiSettings().choices();
    choices.aiUseCloudSpeech = true;
    choices.aiSpeechBaseURL = u"https://speech.example.com/v1"_s;
    choices.aiUseOnline = true;
    choices.aiAPIBaseURL = u"https://text.example.com/v1"_s;
    model.aiSettings().choose(choices);
    Events::handle();
    EXPECT_TRUE(notes().contains(u"音频会发送到 speech.example.com。"_s));
    EXPECT_FALSE(notes().contains(u"text.example.com"_s));
    click(u"识别后自动校对"_s);
    EXPECT_TRUE(model.aiSettings().choices().aiAutomaticReview);
    EXPECT_TRUE(notes().contains(u"字幕文字会发送到 text.example.com。"_s));
    click(u"AI 设置…"_s);
    EXPECT_TRUE(model.window().aiSettingsPresented());
    EXPECT_EQ(model.window().aiSettingsTab(), WindowState::AISettingsTab::speech);
}

TEST_F(SpeechInPanel, invented_cues_are_marked_walked_through_and_removed)
{
    drop(u"访谈.mov"_s);
    click(u"开始识别"_s);
    finish();
    const QAbstractItemModel &rows = *table().model();
    EXPECT_TRUE(rows.index(0, 0).data(CueTableModel::suspectRole).toBool());
    EXPECT_FALSE(rows.index(1, 0).data(CueTableModel::suspectRole).toBool());
    EXPECT_EQ(rows.index(0, 0).data(Qt::ToolTipRole).toString().section(u'\n', 0, 0),
              u"可能是识别臆造：此处没有声音"_s);
    table().goTo(1);
    Events::handle();
    EXPECT_EQ(label(u"可疑字幕"_s), u"1 条可能是识别臆造"_s);
    EXPECT_FALSE(find<CheckBox>(u"移除这条"_s)->isEnabled());
    click(u"下一处可疑"_s);
    EXPECT_EQ(table().currentCue(), 0);
    EXPECT_EQ(label(u"可疑字幕"_s), u"1 条可能是识别臆造 · 这条：此处没有声音"_s);
    click(u"移除这条"_s);
    EXPECT_FALSE(button(u"移除勾选 · 0"_s)->isEnabled());
    click(u"移除这条"_s);
    click(u"移除勾选 · 1"_s);
    EXPECT_EQ(texts(), QStringList{u"欢迎回来"_s});
    EXPECT_EQ(button(u"下一处可疑"_s), nullptr);
    model.undo();
    Events::handle();
    EXPECT_NE(button(u"下一处可疑"_s), nullptr);
}
