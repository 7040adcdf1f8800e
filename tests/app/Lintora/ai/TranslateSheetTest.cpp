// The sheets of translation and of its glossary.

#include "app/Lintora/ai/TranslateSheet.h"

#include "app/Lintora/ai/GlossarySheet.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/HelperFolder.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class TranslateInPanel : public PanelTest
{
protected:
    TranslateInPanel()
    {
        AIChoices choices = model.aiSettings().choices();
        choices.aiTextModelFile = outside.file(u"qwen.gguf"_s, "model").toLocalFile();
        model.aiSettings().choose(choices);
        helpers.script(u"llama-server"_s, {u"health 200"_s, u"completion echo"_s, u"serve"_s});
    }

    ~TranslateInPanel() override
    {
        model.shutdownAI();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
    }

    template <class Kind>
    Kind *sheet() const
    {
        auto *const found = panel->findChild<Kind *>();
        return found && found->isVisible() ? found : nullptr;
    }

    void finish()
    {
        ASSERT_TRUE(Events::waitFor([&] { return !model.aiBusy(); }));
        Events::handle();
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(TranslateInPanel, the_selected_track_becomes_another_language_by_two_clicks)
{
    EXPECT_FALSE(button(u"翻译"_s)->isEnabled()) << "there is nothing to translate";
    loadTracks({u"大家好"_s, u"再见"_s}, {u"Hello"_s});
    click(u"翻译"_s);
    ASSERT_NE(sheet<TranslateSheet>(), nullptr);
    EXPECT_EQ(find<ChoiceBox>(u"字幕"_s)->currentText(), u"中文 · 2 条"_s);
    EXPECT_EQ(find<ChoiceBox>(u"方向"_s)->currentText(), u"中文 → English"_s);
    click(u"开始翻译"_s);
    EXPECT_EQ(button(u"开始翻译"_s), nullptr);
    finish();
    EXPECT_EQ(sheet<TranslateSheet>(), nullptr);
    EXPECT_EQ(texts(), (QStringList{u"译大家好"_s, u"译再见"_s}));
    EXPECT_EQ(model.tracks().last().label, u"English 2"_s);
    EXPECT_EQ(status(), u"已翻译 2 条字幕"_s);
}

TEST_F(TranslateInPanel, another_track_and_direction_are_chosen_by_the_keyboard)
{
    loadTracks({u"大家好"_s}, {u"Hello"_s});
    click(u"翻译"_s);
    auto *const track = find<ChoiceBox>(u"字幕"_s);
    track->setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(find<ChoiceBox>(u"方向"_s)->currentText(), u"English → 中文"_s);
    button(u"开始翻译"_s)->setFocus();
    press(Qt::Key_Return);
    finish();
    EXPECT_EQ(texts(), QStringList{u"译Hello"_s});
    EXPECT_EQ(model.tracks().last().label, u"中文 2"_s);
}

TEST_F(TranslateInPanel, goes_on_while_the_sheet_is_closed_and_ends_at_a_click)
{
    helpers.script(u"llama-server"_s, {u"health hang"_s, u"serve"_s});
    load({u"大家好"_s});
    click(u"翻译"_s);
    click(u"开始翻译"_s);
    ASSERT_TRUE(helpers.waitForProcesses(1));
    press(Qt::Key_Escape);
    EXPECT_EQ(sheet<TranslateSheet>(), nullptr);
    EXPECT_TRUE(model.aiBusy());
    click(u"翻译"_s);
    click(u"取消"_s);
    EXPECT_FALSE(model.aiBusy());
    EXPECT_TRUE(button(u"开始翻译"_s)->isEnabled());
    EXPECT_EQ(texts(), QStringList{u"大家好"_s});
}

TEST_F(TranslateInPanel, a_glossary_is_typed_kept_and_seen_in_the_cues)
{
    load({u"我们聊聊调色"_s, u"大家好"_s});
    click(u"翻译"_s);
    click(u"术语表…"_s);
    ASSERT_NE(sheet<GlossarySheet>(), nullptr);
    auto *const lines = find<QPlainTextEdit>(u"术语"_s);
    lines->setPlainText(u"调色"_s);
    click(u"保存"_s);
    QStringList notes;
    for (const QLabel *const each : sheet<GlossarySheet>()->findChildren<QLabel *>())
        notes += each->text();
    EXPECT_TRUE(notes.contains(u"术语表第 1 行有误，每行应为：术语,译法,备注。"_s));
    EXPECT_EQ(lines->toPlainText(), u"调色"_s) << "what was typed stays";
    lines->setPlainText(u"调色,调色"_s);
    click(u"保存"_s);
    EXPECT_EQ(lines->toPlainText(), u"调色,调色,\n"_s);
    press(Qt::Key_Escape);
    ASSERT_NE(sheet<TranslateSheet>(), nullptr);
    click(u"按术语表翻译"_s);
    EXPECT_TRUE(model.aiSettings().choices().aiUseGlossary);
    click(u"开始翻译"_s);
    finish();
    const QAbstractItemModel &rows = *table().model();
    EXPECT_TRUE(rows.index(0, 0).data(Qt::ToolTipRole).toString().contains(u"术语已保留：调色 → 调色"_s));
    EXPECT_FALSE(rows.index(1, 0).data(Qt::ToolTipRole).toString().contains(u"术语"_s));
    model.setText(0, u"别的"_s);
    EXPECT_TRUE(
        rows.index(0, 0).data(CueTableModel::warningsRole).toStringList().contains(u"术语未按译法：调色 → 调色"_s));
}
