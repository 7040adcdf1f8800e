#include "core/files/FileReader.h"
#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"

using namespace Qt::StringLiterals;

namespace {

class ScriptMatchingTest : public ModelTest
{
protected:
    void match(const QString &script)
    {
        model->scriptMatching().setText(script);
        model->scriptMatching().match();
        settle();
    }
};

} // namespace

TEST_F(ScriptMatchingTest, a_transcript_is_matched_reviewed_applied_and_taken_back)
{
    loadTexts({u"今天我们辽聊调色"_s, u"先说白平衡"_s, u"谢谢大家"_s});
    match({});
    EXPECT_EQ(model->scriptMatching().status(), u"请先粘贴文稿正文"_s);
    match(u"今天我们聊聊调色，先说白平衡。谢谢大家！"_s);
    ASSERT_EQ(model->scriptMatching().rows().size(), 3);
    EXPECT_EQ(model->scriptMatching().rows()[0].replacement, u"今天我们聊聊调色，"_s);
    for (int row = 0; row < 3; ++row)
        model->scriptMatching().setRowSelected(row, row == 0);
    const LintoraSession before = model->snapshot();
    model->scriptMatching().apply();
    EXPECT_EQ(texts(), (QStringList{u"今天我们聊聊调色，"_s, u"先说白平衡"_s, u"谢谢大家"_s}));
    EXPECT_EQ(model->scriptMatching().status(), u"已按文稿修改 1 条字幕，可撤销修改"_s);
    EXPECT_TRUE(model->scriptMatching().canUndo());
    const auto isKept = [&] {
        const QList<RecentWork::Entry> &recent = model->recentWork();
        return !recent.isEmpty() && recent.first().kind == RecentWork::Kind::session;
    };
    ASSERT_TRUE(Events::waitFor(isKept)) << "outlasts the program";
    EXPECT_TRUE(model->recentWork().first().title.startsWith(u"文稿匹配前_"));
    EXPECT_EQ(LintoraSession::decode(FileReader::readAll(model->recentWork().first().file)), before);
    model->scriptMatching().undo();
    EXPECT_EQ(model->snapshot(), before);
    model->undo();
    EXPECT_EQ(texts().first(), u"今天我们聊聊调色，"_s);
    model->undo();
    EXPECT_EQ(model->snapshot(), before);

    match(u"今天我们辽聊调色 先说白平衡 谢谢大家"_s);
    EXPECT_EQ(model->scriptMatching().status(), u"已匹配的文字与当前字幕一致，无需修改"_s);
    match(u"completely unrelated words in another tongue"_s);
    EXPECT_EQ(model->scriptMatching().status(),
              u"文稿与字幕没有足够的对应内容，请确认语言和段落一致，或分段匹配。原字幕已保留。"_s);
}

TEST_F(ScriptMatchingTest, differences_of_punctuation_are_left_alone_by_a_switch)
{
    ScriptMatching &matching = model->scriptMatching();
    loadTexts({u"今天我们辽聊调色"_s, u"先说白平衡"_s, u"谢谢大家"_s});
    match(u"今天我们聊聊调色，先说白平衡。谢谢大家"_s);
    EXPECT_EQ(matching.status(), u"已匹配 3 条，2 条有改动"_s);
    matching.selectAll(false);
    matching.setRowSelected(1, true);
    matching.setLeavesPunctuation(true);
    EXPECT_EQ(matching.status(), u"已匹配 3 条，1 条有改动"_s);
    matching.selectAll(true);
    EXPECT_TRUE(matching.rows()[0].selected);
    matching.setRowSelected(0, false);
    matching.setLeavesPunctuation(false);
    EXPECT_FALSE(matching.rows()[0].selected) << "ticks stay";
    EXPECT_TRUE(matching.rows()[1].selected);
    EXPECT_FALSE(matching.rows()[2].selected) << "nothing would change";
    matching.setLeavesPunctuation(true);
    matching.selectAll(true);
    matching.apply();
    EXPECT_EQ(texts(), (QStringList{u"今天我们聊聊调色，"_s, u"先说白平衡"_s, u"谢谢大家"_s}));
    match(u"今天我们聊聊调色。先说白平衡！"_s);
    EXPECT_EQ(matching.status(), u"已匹配的文字与当前字幕一致，无需修改"_s);
}

TEST_F(ScriptMatchingTest, a_match_of_what_has_changed_meanwhile_is_dropped)
{
    loadTexts({u"今天我们聊聊调涩"_s, u"先说白平衡"_s});
    const QString script = u"今天我们聊聊调色，先说白平衡。"_s;
    const std::function<void()> changes[] = {[&] { model->setText(0, u"改了"_s); },
                                             [&] { model->scriptMatching().setText(script + u'x'); },
                                             [&] { model->undo(); }};
    for (const auto &change : changes) {
        model->scriptMatching().setText(script);
        model->scriptMatching().match();
        EXPECT_EQ(model->scriptMatching().status(), u"正在匹配文稿…"_s);
        EXPECT_EQ(model->activity(), Progress{.what = u"正在匹配文稿…"_s});
        change();
        settle();
        EXPECT_EQ(model->scriptMatching().status(), u"当前字幕或文稿已变化，请重新匹配"_s);
        EXPECT_TRUE(model->scriptMatching().rows().isEmpty());
    }
    match(script);
    model->setText(1, u"又改了"_s);
    model->scriptMatching().apply();
    EXPECT_EQ(model->scriptMatching().status(), u"当前字幕或文稿已变化，请重新匹配"_s);
    EXPECT_EQ(texts().first(), u"今天我们聊聊调涩"_s);

    model->scriptMatching().match();
    model->cancelActivity();
    settle();
    EXPECT_EQ(model->scriptMatching().status(), QString());
    EXPECT_TRUE(model->scriptMatching().rows().isEmpty());
}
