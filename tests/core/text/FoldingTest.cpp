#include "core/text/Folding.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Folding, makes_characters_equal_that_differ_in_case_accents_or_width)
{
    for (const auto &[character, expected] : {
             // Latin
             std::pair(u"A"_s, u"a"_s),
             {u"Ａ"_s, u"a"_s},
             {u"á"_s, u"a"_s},
             {u"Å"_s, u"a"_s},
             {u"\u212B"_s, u"a"_s},
             {u"E\u0301\u0323"_s, u"e"_s},
             {u"ế"_s, u"e"_s},
             {u"İ"_s, u"i"_s},
             {u"I"_s, u"i"_s},
             {u"ı"_s, u"ı"_s},
             {u"Ø"_s, u"ø"_s},
             {u"Ł"_s, u"ł"_s},
             {u"ẞ"_s, u"ß"_s},
             {u"ﬁ"_s, u"ﬁ"_s},
             {u"Æ"_s, u"æ"_s},
             // Greek and Cyrillic
             {u"Ά"_s, u"α"_s},
             {u"ς"_s, u"σ"_s},
             {u"ᾼ"_s, u"α"_s},
             {u"Ё"_s, u"е"_s},
             {u"й"_s, u"и"_s},
             // Kana
             {u"ｶ"_s, u"カ"_s},
             {u"ｶﾞ"_s, u"カ"_s},
             {u"ガ"_s, u"カ"_s},
             {u"か\u3099"_s, u"か"_s},
             {u"ぱ"_s, u"は"_s},
             {u"ｯ"_s, u"ッ"_s},
             {u"ー"_s, u"ー"_s},
             {u"ｰ"_s, u"ー"_s},
             // Hangul
             {u"\u1112\u1161\u11AB"_s, u"한"_s},
             {u"한"_s, u"한"_s},
             {u"ﾡ"_s, u"ㄱ"_s},
             // Ideographs
             {u"中"_s, u"中"_s},
             {u"\uF91D"_s, u"欄"_s},
             {u"葛\U000E0100"_s, u"葛"_s},
             {u"\U00020000"_s, u"\U00020000"_s},
             {u"說"_s, u"說"_s},
             // Other scripts
             {u"بَ"_s, u"ب"_s},
             {u"שּׁ"_s, u"ש"_s},
             {u"ก่"_s, u"ก"_s},
             {u"कि"_s, u"कि"_s},
             {u"क़"_s, u"क"_s},
             // Digits, symbols, and marks without a letter
             {u"７"_s, u"7"_s},
             {u"⑦"_s, u"⑦"_s},
             {u"Ⅷ"_s, u"ⅷ"_s},
             {u"1️⃣"_s, u"1⃣"_s},
             {u"❤️"_s, u"❤"_s},
             {u"\u0301"_s, u"\u0301"_s},
             {u"\U00010400"_s, u"\U00010428"_s},
         })
        EXPECT_EQ(Folding::folded(character).toStdString(), expected.toStdString()) << character.toStdString();
}

TEST(Folding, a_character_of_a_hundred_thousand_marks_takes_no_minutes)
{
    // Marks of two classes in the wrong order: putting them right one by one would be a matter of ten thousand million
    // steps.
    const QString marks = QString(100'000, QChar(0x0301)) + QString(100'000, QChar(0x0323));
    EXPECT_EQ(Folding::folded(u"Á"_s.append(marks)), u"a"_s);
}
