#include "core/review/ReviewRows.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ReviewRows, a_change_of_meaning_waits_for_a_person)
{
    using Risk = ReviewRow::Risk;
    const struct
    {
        QString before;
        QString after;
        ReviewRow::Risks risks;
    } rows[] = {
        {u"今天我们聊聊条色"_s, u"今天我们聊聊调色。"_s, {}},
        {u"一样的道理，特别简单"_s, u"同样的道理，非常简单"_s, {}},
        {u"A quick test"_s, u"a quick test."_s, {}},
        {u"so i think its fine"_s, u"So I think it's fine."_s, {}},
        {u"花了２０块钱"_s, u"花了20块钱"_s, {}},
        {u"一共二十个镜头"_s, u"一共三十个镜头"_s, Risk::numbers},
        {u"快门用四十分之一"_s, u"快门用1/40"_s, Risk::numbers | Risk::mostOfCue},
        {u"放到rec709里"_s, u"放到Rec709里"_s, Risk::names},
        {u"we met Anna there"_s, u"we met Emma there"_s, Risk::names},
        {u"这个可以用"_s, u"这个不可以用"_s, Risk::negations},
        {u"you can't do that"_s, u"you can do that"_s, Risk::negations},
        {u"先把素材导进来"_s, u"首先请打开软件界面"_s, Risk::mostOfCue},
    };
    for (const auto &row : rows)
        EXPECT_EQ(ReviewRows::risks(row.before, row.after).toInt(), row.risks.toInt())
            << row.before.toStdString() << " -> " << row.after.toStdString() << ": "
            << ReviewRows::reason(ReviewRows::risks(row.before, row.after)).toStdString();
}

TEST(ReviewRows, takes_what_is_ticked_and_nothing_else)
{
    const QList<Subtitle> before{{.id = 7, .start = 0, .end = 900, .text = u"聊聊条色"_s},
                                 {.id = 9, .start = 900, .end = 2000, .text = u"共二十个"_s},
                                 {.id = 11, .start = 2000, .end = 3000, .text = u"好"_s}};
    QList<Subtitle> after = before;
    after[0].text = u"聊聊调色"_s;
    after[1].text = u"共三十个"_s;
    const QList<ReviewRow> rows = ReviewRows::make(before, after);
    EXPECT_TRUE(rows[0].selected);
    EXPECT_FALSE(rows[1].selected);
    EXPECT_FALSE(rows[2].selected);
    QList<Subtitle> expected = before;
    expected[0].text = after[0].text;
    EXPECT_EQ(ReviewRows::apply(rows), expected);
}
