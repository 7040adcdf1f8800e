#include "core/text/Characters.h"

#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <unicode/ubrk.h>

using namespace Qt::StringLiterals;

namespace {

QList<qsizetype> boundaries(QStringView text)
{
    QList<qsizetype> ends;
    for (Characters::Cursor at(text); at.next();)
        ends.append(at.end());
    return ends;
}

QList<qsizetype> boundariesByTheRules(QStringView text)
{
    QList<qsizetype> ends;
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUBreakIteratorPointer rules(
        ubrk_open(UBRK_CHARACTER, "", text.utf16(), int32_t(text.size()), &status));
    while (U_SUCCESS(status) && ubrk_next(rules.getAlias()) != UBRK_DONE)
        ends.append(ubrk_current(rules.getAlias()));
    return ends;
}

} // namespace

TEST(Characters, counts_what_a_reader_sees_as_one)
{
    for (const auto &[text, expected] : {
             std::pair(u""_s, 0),
             {u"你好，world"_s, 8},
             {u"ｶﾞＡ　ａ"_s, 4},
             {u"e\u0301\u0323x"_s, 2},
             {u"か\u3099き"_s, 2},
             {u"한국"_s, 2},
             {u"\u1112\u1161\u11AB국"_s, 2},
             {u"👨‍👩‍👧‍👦👍🏽"_s, 2},
             {u"🇨🇳🇺🇸🇨"_s, 3},
             {u"❤️1️⃣"_s, 2},
             {u"\U00020000葛\U000E0100"_s, 2},
             {u"\r\n\n\r"_s, 3},
             {u"กำนี่"_s, 2},
             {u"🚀🇨🇳"_s, 2},
             {u"ย🎬"_s, 2},
             {u"ও়"_s, 1},
         }) {
        EXPECT_EQ(Characters::count(text), expected) << text.toStdString();
        EXPECT_TRUE(Characters::isLonger(text, expected - 1)) << text.toStdString();
        EXPECT_FALSE(Characters::isLonger(text, expected)) << text.toStdString();
    }
}

TEST(Characters, the_short_way_finds_the_boundaries_that_the_rules_find)
{
    for (char32_t scalar = 1; scalar < 0x20000; ++scalar) {
        const QString text = u"aé"_s + QString::fromUcs4(&scalar, 1) + u"中ａ가"_s;
        ASSERT_EQ(boundaries(text), boundariesByTheRules(text)) << "U+" << std::hex << uint(scalar);
    }
    Generator generator(1);
    const QStringList pieces = {
        u"中"_s,     u"a"_s,      u"，"_s, u"\r"_s,     u"\n"_s,     u"\u0301"_s, u"\u200D"_s,
        u"❤"_s,      u"\uFE0F"_s, u"👩"_s,  u"💻"_s,      u"🏽"_s,   u"🇨"_s,      u"🇳"_s,
        u"\u1112"_s, u"\u1161"_s, u"하"_s, u"\u11AB"_s, u"\u0600"_s, u"ﾞ"_s,      u"ย"_s,
        u"ำ"_s,      u"ও"_s,      u"়"_s,   u"क"_s,      u"्"_s,       u"🎬"_s,      QString(QChar(0xD800))};
    for (int round = 0; round < 20'000; ++round) {
        QString text;
        for (qint64 left = generator.number(0, 12); left > 0; --left)
            text += generator.pick(pieces);
        const QList<qsizetype> ends = boundaries(text);
        ASSERT_EQ(ends, boundariesByTheRules(text)) << text.toStdString();
        for (qsizetype at = 0; at <= text.size(); ++at)
            ASSERT_EQ(Characters::isBoundary(text, at), at == 0 || ends.contains(at)) << text.toStdString();
    }
}

TEST(Characters, walks_over_one_text_within_another)
{
    Characters::Cursor outer(u"🚀🇨🇳👍🏽");
    for (const qsizetype end : {2, 6, 10}) {
        ASSERT_TRUE(outer.next());
        EXPECT_EQ(outer.end(), end);
        EXPECT_EQ(Characters::count(u"ย🎬"), 2);
    }
}

TEST(Characters, sorts_scalars_into_the_sets_of_unicode)
{
    struct Row
    {
        char32_t scalar;
        std::string sets; ///< Space, Blank, Newline, Letter, letter or Digit, Alphanumeric, Punctuation
    };
    for (const auto &[scalar, sets] : {
             Row{U' ', "SB"}, {U'\t', "SB"},  {U'\n', "SN"},  {U'\v', "SN"}, {0x85, "SN"},     {0xA0, "SB"},
             {0x3000, "SB"},  {0x2028, "SN"}, {0x200B, ""},   {0xFEFF, ""},  {U'a', "LDA"},    {U'é', "LDA"},
             {U'中', "LDA"},  {U'々', "LDA"}, {U'ー', "LDA"}, {U'ﾞ', "LDA"}, {0x20000, "LDA"}, {0x301, "LA"},
             {0xFE0F, "LA"},  {0x20E3, "LA"}, {U'7', "DA"},   {U'７', "DA"}, {U'〇', "DA"},    {U'①', "DA"},
             {U'Ⅷ', "DA"},    {U'½', "DA"},   {U'㋐', ""},    {U'、', "P"},  {U'…', "P"},      {U'—', "P"},
             {U'《', "P"},    {U'·', "P"},    {U'_', "P"},    {U'~', ""},    {U'～', ""},      {U'$', ""},
             {U'❤', ""},      {0x1F600, ""},  {0xD800, ""},   {0x200D, ""},
         }) {
        std::string found;
        found += Characters::isSpace(scalar) ? "S" : "";
        found += Characters::isBlank(scalar) ? "B" : "";
        found += Characters::isNewline(scalar) ? "N" : "";
        found += Characters::isLetter(scalar) ? "L" : "";
        found += Characters::isLetterOrDigit(scalar) ? "D" : "";
        found += Characters::isAlphanumeric(scalar) ? "A" : "";
        found += Characters::isPunctuation(scalar) ? "P" : "";
        EXPECT_EQ(found, sets) << "U+" << std::hex << uint(scalar);
    }
}

TEST(Characters, tells_scripts_by_the_script_property_alone)
{
    EXPECT_EQ(Characters::script(U'中'), QChar::Script_Han);
    EXPECT_EQ(Characters::script(0x20000), QChar::Script_Han);
    EXPECT_EQ(Characters::script(U'ﾞ'), QChar::Script_Common);
    EXPECT_EQ(Characters::script(U'ー'), QChar::Script_Common);
    EXPECT_EQ(Characters::script(U'ｶ'), QChar::Script_Katakana);
    EXPECT_EQ(Characters::script(U'Ａ'), QChar::Script_Latin);
    EXPECT_EQ(Characters::script(0x301), QChar::Script_Inherited);
}

TEST(Characters, walks_over_scalars_and_lone_surrogates)
{
    const QString text = u"a😀"_s + QChar(0xDC00) + QChar(0xD83D);
    std::u32string scalars;
    for (const char32_t scalar : Characters::Scalars(text))
        scalars += scalar;
    EXPECT_EQ(scalars, (std::u32string{U'a', U'😀', 0xDC00, 0xD83D}));
}

TEST(Characters, finds_the_controls_that_xml_forbids)
{
    for (char16_t unit = 0; unit < 0x100; ++unit)
        EXPECT_EQ(Characters::holdsControl(u"好"_s + QChar(unit)), unit < 0x20 && unit != '\t' && unit != '\n')
            << int(unit);
}
