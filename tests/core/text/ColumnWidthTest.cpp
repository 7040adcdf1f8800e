#include "core/text/ColumnWidth.h"

#include <QString>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ColumnWidth, counts_full_width_characters_twice)
{
    for (const auto &[text, halves] : {
             std::pair(u""_s, 0),
             {u"你好"_s, 4},
             {u"，。「」"_s, 8},
             {u"“好”……"_s, 10},
             {u"abc 123."_s, 8},
             {u"don’t"_s, 5},
             {u"ＡＢ"_s, 4},
             {u"ｱｶ"_s, 2},
             {u"Café Жя Ωα"_s, 10},
             {u"e\u0301\u200B"_s, 1},
             {u"好\u0301a"_s, 3},
             {u"👨‍👩‍👧\U00020000"_s, 4},
             {u"한글"_s, 4},
         })
        EXPECT_EQ(ColumnWidth::of(text), halves) << text.toStdString();
    EXPECT_EQ(ColumnWidth::ofWidestLine(u"好\nabc\n"_s), 3);
}
