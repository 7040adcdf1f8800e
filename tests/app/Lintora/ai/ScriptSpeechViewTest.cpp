// Making subtitles of a script in the window: by the keyboard, from the script to the cues that are to be judged.

#include "app/Lintora/ai/ScriptSpeechView.h"

#include "app/Lintora/ai/WorkView.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "app/Lintora/controls/ValueEdit.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/HeardWords.h"
#include "tests/support/HelperFolder.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QPlainTextEdit>
#include <QTabBar>

using namespace Qt::StringLiterals;

namespace {

class ScriptInPanel : public PanelTest
{
protected:
    ScriptInPanel()
    {
        AIChoices choices = model.aiSettings().choices();
        choices.aiSpeechModelFile = outside.file(u"ggml.bin"_s, "model").toLocalFile();
        model.aiSettings().choose(choices);
        helpers.script(u"ffmpeg-audio"_s, {u"wav 0 8"_s});
        const HeardWords words =
            HeardWords().say(u"大家好"_s, 400).say(u"刚才电话响了"_s, 1'400).say(u"欢迎回来今天我们讲调色"_s, 4'100);
        helpers.script(u"whisper-cli"_s, {u"result "_s + QString::fromUtf8(words.fullJson())});
    }

    ~ScriptInPanel() override
    {
        model.shutdownAI();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
    }

    /// The sheet as it opens in an empty window, with a script and a sound.
    void prepare()
    {
        click(u"文稿匹配"_s);
        type(u"大家好！\n这一句没有人说\n欢迎回来今天我们讲调色"_s);
        outside.answer = outside.file(u"访谈.mov"_s, "x").toLocalFile();
        click(u"选择文件…"_s);
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.aiBusy() && !model.scriptSpeech().task().isRunning(); }));
        Events::handle();
    }

    /// The rows of the list that can be seen, what stands in two lines joined by " | ".
    QStringList rows() const
    {
        QStringList found;
        const auto *const list = find<QListView>(u"定时结果"_s);
        for (int i = 0; list && i < list->model()->rowCount(); ++i) {
            const auto row = list->model()->index(i, 0).data(MarkedTextDelegate::comparedRole).value<ComparedRow>();
            found += QStringList{row.before, row.after, row.warning}.join(u" | "_s);
        }
        return found;
    }

    QString note() const { return find<QLabel>(u"状态"_s)->text(); }

    HelperFolder helpers;
};

} // namespace

TEST_F(ScriptInPanel, a_script_becomes_cues_by_the_keyboard_alone)
{
    button(u"文稿匹配"_s)->setFocus();
    press(Qt::Key_Space);
    ASSERT_TRUE(find<QPlainTextEdit>(u"文稿正文"_s)->hasFocus());
    EXPECT_EQ(find<QTabBar>(u"方式"_s)->currentIndex(), 1) << "there is no wording to be corrected";
    type(u"大家好！\n这一句没有人说\n欢迎回来今天我们讲调色"_s);
    EXPECT_FALSE(button(u"开始识别"_s)->isEnabled()) << "there is no sound";
    outside.answer = outside.file(u"访谈.mov"_s, "x").toLocalFile();
    const auto tabTo = [&](const QString &name) {
        for (int i = 0; i < 12 && QApplication::focusWidget()->accessibleName() != name; ++i)
            press(Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget()->accessibleName(), name);
    };
    tabTo(u"选择文件…"_s);
    press(Qt::Key_Return);
    tabTo(u"开始识别"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), find<WorkView>({})->focusProxy()) << "on what ends it";
    finish();
    EXPECT_EQ(QApplication::focusWidget(), button(u"应用"_s));
    EXPECT_TRUE(texts().isEmpty()) << "nothing before it has been seen";
    EXPECT_EQ(note(), u"3 条字幕 · 1 条时间待核对"_s);
    EXPECT_EQ(rows(), (QStringList{u"文稿中未听到 · 1 | 请确认是否说过；这些字幕的时间由前后推算。 | "_s,
                                   u"这一句没有人说 | 自第 2 条 | "_s,
                                   u"文稿外的内容 · 1 | 声音里有，文稿里没有，不写入字幕。 | "_s,
                                   u"刚才电话响了 | 00:00:01,400 – 00:00:03,200 | "_s,
                                   u"字幕 · 3 | 其中 1 条时间待核对，应用后会标出。 | "_s,
                                   u"大家好！ | 00:00:00,400 – 00:00:01,300 · 可信度 100% | "_s,
                                   u"这一句没有人说 | 00:00:01,300 – 00:00:04,100 · 可信度 0% | 请核对"_s,
                                   u"欢迎回来今天我们讲调色 | 00:00:04,100 – 00:00:07,400 · 可信度 100% | "_s}));
    const QAbstractItemModelTester tester(find<QListView>(u"定时结果"_s)->model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    tabTo(u"仅看待核对的字幕"_s);
    press(Qt::Key_Space);
    EXPECT_EQ(rows().size(), 6);
    tabTo(u"应用"_s);
    press(Qt::Key_Return);
    EXPECT_FALSE(model.window().scriptMatchPresented());
    EXPECT_EQ(texts(), (QStringList{u"大家好！"_s, u"这一句没有人说"_s, u"欢迎回来今天我们讲调色"_s}));
    EXPECT_TRUE(table().hasFocus());
    EXPECT_EQ(table().currentCue(), 1) << "what is to be judged first";
}

TEST_F(ScriptInPanel, the_next_unsure_cue_is_a_key_away)
{
    prepare();
    click(u"开始识别"_s);
    finish();
    click(u"应用"_s);
    EXPECT_EQ(find<QLabel>(u"可疑字幕"_s)->text(), u"1 条时间待核对"_s);
    EXPECT_EQ(find<CheckBox>(u"移除这条"_s), nullptr) << "the words are the person's own";
    EXPECT_EQ(table().model()->index(1, 0).data(Qt::ToolTipRole).toString().section(u'\n', 0, 0),
              u"没有听清，时间请核对"_s);
    table().goTo(2);
    EXPECT_FALSE(button(u"已核对"_s)->isEnabled());
    press(Qt::Key_Apostrophe, Qt::ControlModifier);
    EXPECT_EQ(table().currentCue(), 1);
    click(u"已核对"_s);
    EXPECT_EQ(button(u"下一处可疑"_s), nullptr);
    press(Qt::Key_Apostrophe, Qt::ControlModifier);
    EXPECT_EQ(table().currentCue(), 1);
}

TEST_F(ScriptInPanel, the_list_follows_the_script_and_the_width_and_the_sound_can_be_changed)
{
    prepare();
    click(u"开始识别"_s);
    finish();
    EXPECT_EQ(find<ChoiceBox>(u"来源"_s), nullptr);
    auto *const columns = find<ValueEdit>(u"每条宽度"_s);
    columns->setFocus();
    columns->selectAll();
    type(u"6"_s);
    press(Qt::Key_Return);
    finish();
    EXPECT_EQ(model.scriptSpeech().columns(), 6);
    EXPECT_EQ(rows().filter(u"可信度"_s).size(), 5);
    find<QPlainTextEdit>(u"文稿正文"_s)->setPlainText(u"欢迎回来"_s);
    finish();
    EXPECT_EQ(rows().filter(u"可信度"_s).size(), 1);

    click(u"识别设置"_s);
    EXPECT_EQ(find<ChoiceBox>(u"来源"_s)->currentText(), u"访谈.mov"_s);
    EXPECT_TRUE(rows().isEmpty());
    helpers.script(u"whisper-cli"_s, {u"wait"_s});
    click(u"开始识别"_s);
    ASSERT_TRUE(helpers.waitForProcesses(4));
    press(Qt::Key_Escape);
    EXPECT_TRUE(model.aiBusy()) << "goes on while the sheet is closed";
    click(u"文稿匹配"_s);
    EXPECT_EQ(note(), u"可以关闭此页，识别会继续。"_s);
    click(u"取消"_s);
    EXPECT_EQ(rows().filter(u"可信度"_s).size(), 1) << "what was heard before";
    EXPECT_TRUE(button(u"应用"_s)->isEnabled());
}

TEST_F(ScriptInPanel, both_ways_share_the_script)
{
    load({u"今天我们聊聊条色"_s});
    click(u"文稿匹配"_s);
    auto *const ways = find<QTabBar>(u"方式"_s);
    EXPECT_EQ(ways->currentIndex(), 0);
    EXPECT_EQ(button(u"开始识别"_s), nullptr);
    type(u"今天我们聊聊调色"_s);
    click(u"开始匹配"_s);
    ASSERT_TRUE(Events::waitFor([&] { return !model.activity(); }));
    EXPECT_NE(button(u"应用勾选 · 1"_s), nullptr);
    ways->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(find<QPlainTextEdit>(u"文稿正文"_s)->toPlainText(), u"今天我们聊聊调色"_s);
    EXPECT_EQ(button(u"应用勾选 · 1"_s), nullptr);
    EXPECT_EQ(find<QListView>(u"对照"_s), nullptr);
    EXPECT_FALSE(button(u"开始识别"_s)->isEnabled()) << "there is no sound";
    press(Qt::Key_Left);
    EXPECT_NE(button(u"应用勾选 · 1"_s), nullptr);
}
