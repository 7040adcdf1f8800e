#include "core/text/LanguageSeparation.h"

#include "core/text/Characters.h"
#include "tests/support/Generator.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using LanguageSeparation::Group;

namespace {

constexpr Group chinese = Group::chinese;
constexpr Group english = Group::english;
constexpr Group unassigned = Group::unassigned;

/// The groups as "中文:…|English:…", with / for line feeds.
QString separated(const QString &text)
{
    QStringList parts;
    for (const auto &[group, items] : LanguageSeparation::split({{.id = 7, .start = 100, .end = 200, .text = text}})) {
        EXPECT_EQ(items.size(), 1);
        EXPECT_EQ(items[0], (Subtitle{.id = 7, .start = 100, .end = 200, .text = items[0].text}));
        parts += LanguageSeparation::label(group) + u':' + QString(items[0].text).replace(u'\n', u'/');
    }
    return parts.join(u'|');
}

} // namespace

TEST(LanguageSeparation, classifies_a_line_by_the_scripts_of_its_letters)
{
    for (const auto &[line, expected] : {
             std::pair(u"你好"_s, chinese),
             {u"iPhone 15 发布了"_s, chinese},
             {u"\U00020000"_s, chinese},
             {u"々"_s, chinese},
             {u"Hello, world 2024!"_s, english},
             {u"Ｈｅｌｌｏ"_s, english},
             {u"Café ªº"_s, english},
             {u"Γειά OK"_s, english},
             {u"こんにちは 世界"_s, unassigned},
             {u"ｶﾞ世界"_s, unassigned},
             {u"世界Привет"_s, unassigned},
             {u"한국 Korea"_s, unassigned},
             {u"مرحبا OK"_s, unassigned},
             {u"שלום"_s, unassigned},
             {u"สวัสดี"_s, unassigned},
             {u"Γειά"_s, unassigned},
             {u"नमस्ते"_s, unassigned},
             // Neither digits nor symbols are letters, and neither the prolonging ー nor a lone mark has a script.
             {u"Hello 〇 ㋐ ①"_s, english},
             {u"Ⅷ 2024"_s, unassigned},
             {u"你好ー"_s, chinese},
             {u"ー"_s, unassigned},
             {u"\u0301"_s, unassigned},
             {u""_s, unassigned},
         })
        EXPECT_EQ(LanguageSeparation::classify(line), expected) << line.toStdString();
}

TEST(LanguageSeparation, splits_a_cue_line_by_line)
{
    for (const auto &[text, expected] : {
             std::pair(u"你好\nHello"_s, u"中文:你好|English:Hello"_s),
             {u"Hello\n你好\nworld"_s, u"中文:你好|English:Hello/world"_s},
             {u"你好<BR/>Hello"_s, u"中文:你好|English:Hello"_s},
             {u"你好<br>Hello<bR \u3000/>世界<br\n>x"_s, u"中文:你好/世界|English:Hello/x"_s},
             {u"你好<br / >Hello"_s, u"中文:你好<br / >Hello"_s},
             {u"<brx>Hello<br"_s, u"English:<brx>Hello<br"_s},
             {u"\t 你好\u3000\r\n\n \u00A0 \nHello\u2028world\v\u0085"_s, u"中文:你好|English:Hello/world"_s},
             {u"你好\n2024"_s, u"中文:你好/2024"_s},
             {u"2024\nHello\n…"_s, u"English:2024/Hello/…"_s},
             {u"你好\nHello\n2024"_s, u"中文:你好|English:Hello|待归类:2024"_s},
             {u"你好\nПривет\n2024"_s, u"中文:你好|待归类:Привет/2024"_s},
             {u"Привет\n2024"_s, u"待归类:Привет/2024"_s},
             {u"2024\n—"_s, u"待归类:2024/—"_s},
             // A variation selector is a mark and counts as a letter of no group.
             {u"你好\n❤\n❤️"_s, u"中文:你好|待归类:❤/❤️"_s},
             {u" \n<br>\t"_s, u""_s},
             {u""_s, u""_s},
         })
        EXPECT_EQ(separated(text).toStdString(), expected.toStdString()) << text.toStdString();
}

TEST(LanguageSeparation, groups_come_in_order_with_their_names)
{
    const Subtitle first{.id = 3, .start = 0, .end = 5, .text = u"?\nHello"_s};
    const Subtitle second{.id = 1, .start = 2, .end = 9, .text = u"Привет\n你好"_s};
    const auto groups = LanguageSeparation::split({first, second});
    const auto with = [](Subtitle cue, const QString &text) {
        cue.text = text;
        return cue;
    };
    ASSERT_EQ(groups.size(), 3);
    EXPECT_EQ(groups[0], (LanguageSeparation::GroupedCues{chinese, {with(second, u"你好"_s)}}));
    EXPECT_EQ(groups[1], (LanguageSeparation::GroupedCues{english, {first}}));
    EXPECT_EQ(groups[2], (LanguageSeparation::GroupedCues{unassigned, {with(second, u"Привет"_s)}}));
    QStringList names;
    for (const Group group : {chinese, english, unassigned})
        names += {LanguageSeparation::rawValue(group), LanguageSeparation::label(group)};
    EXPECT_EQ(names.join(u' ').toStdString(), "chinese 中文 english English unassigned 待归类");
    EXPECT_TRUE(LanguageSeparation::holdsBothLanguages(groups));
    EXPECT_FALSE(LanguageSeparation::holdsBothLanguages(groups.first(1)));
    EXPECT_FALSE(LanguageSeparation::holdsBothLanguages(groups.last(2)));
    EXPECT_TRUE(LanguageSeparation::split({}).isEmpty());
}

TEST(LanguageSeparation, holds_every_line_that_is_not_empty_exactly_once)
{
    Generator generator(5);
    const QStringList pieces = {u"你"_s, u"好"_s, u"a"_s,  u"Б"_s,      u"ん"_s,   u"7"_s,    u"—"_s, u" "_s,
                                u"\t"_s, u"\n"_s, u"\n"_s, u"\u2029"_s, u"<br>"_s, u"<BR/"_s, u">"_s, u"❤️"_s};
    static const QRegularExpression breaks(uR"((?i)<br\s*/?>|[\n-\r\x85\x{2028}\x{2029}])"_s,
                                           QRegularExpression::UseUnicodePropertiesOption);
    for (int round = 0; round < 20'000; ++round) {
        QString text;
        for (qint64 left = generator.number(0, 20); left > 0; --left)
            text += generator.pick(pieces);
        QStringList expected;
        for (const QString &line : text.split(breaks)) {
            if (const QStringView trimmed = Characters::trimmedBlanks(line); !trimmed.isEmpty())
                expected += trimmed.toString();
        }
        QStringList found;
        for (const auto &[group, items] : LanguageSeparation::split({{.id = 1, .start = 0, .end = 1, .text = text}}))
            found += items[0].text.split(u'\n');
        expected.sort();
        found.sort();
        ASSERT_EQ(found, expected) << text.toStdString();
    }
}
