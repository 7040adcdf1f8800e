#include "core/text/KeywordReplacement.h"

#include "core/ConversionError.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> cuesOf(const QStringList &texts)
{
    QList<Subtitle> cues;
    for (const QString &text : texts) {
        const qint64 id = 100 - cues.size();
        cues.append({.id = id, .start = id * 10, .end = id * 10 + 5, .text = text});
    }
    return cues;
}

std::string refusal(const QString &query, const QString &replacement)
{
    try {
        KeywordReplacement::apply(cuesOf({u"a"_s}), query, replacement);
        return "accepted";
    } catch (const ConversionError &error) {
        return error.what();
    }
}

} // namespace

TEST(KeywordReplacement, finds_exact_code_units_without_overlap)
{
    struct Row
    {
        QString text;
        QString query;
        QString replacement;
        int occurrences; ///< 0: no row in the preview.
        QString after;
    };
    for (const auto &[text, query, replacement, occurrences, after] : {
             Row{u"aaa"_s, u"aa"_s, u"b"_s, 1, u"ba"_s},
             {u"哈哈哈哈哈"_s, u"哈哈"_s, u""_s, 2, u"哈"_s},
             {u"aab"_s, u"ab"_s, u"x"_s, 1, u"ax"_s},
             {u"x aab aaab"_s, u"aab"_s, u"\n"_s, 2, u"x \n a\n"_s},
             {u"AI"_s, u"ai"_s, u"x"_s, 0, {}},
             {u"AI"_s, u"ＡＩ"_s, u"x"_s, 0, {}},
             {u"é"_s, u"e\u0301"_s, u"x"_s, 0, {}},
             {u"e\u0301"_s, u"e"_s, u"a"_s, 1, u"a\u0301"_s},
             {u"1.5 (a+b)"_s, u"a+b)"_s, u"$1\\1"_s, 1, u"1.5 ($1\\1"_s},
             {u"a.c abc"_s, u"a.c"_s, u"a"_s, 1, u"a abc"_s},
             {u"😀😁"_s, u"😁"_s, u"😀"_s, 1, u"😀😀"_s},
             {u"好"_s, u"好的"_s, u"x"_s, 0, {}},
             {u""_s, u"x"_s, u"x"_s, 0, {}},
         }) {
        const QList<Subtitle> cues = cuesOf({u"—"_s, text});
        const QList<KeywordMatch> matches = KeywordReplacement::matches(cues, query, replacement);
        const KeywordMatch expected{.id = 1, .cue = cues[1], .after = after, .occurrences = occurrences};
        EXPECT_EQ(matches, occurrences == 0 ? QList<KeywordMatch>() : QList{expected}) << text.toStdString();
    }
}

TEST(KeywordReplacement, removes_cues_that_become_empty_and_keeps_the_rest_as_they_were)
{
    const QList<Subtitle> cues = cuesOf({u"嗯"_s, u"好"_s, u"嗯，好"_s, u" 嗯\n嗯\u3000"_s});
    const auto matches = KeywordReplacement::matches(cues, u"嗯"_s, {});
    ASSERT_EQ(matches.size(), 3);
    EXPECT_TRUE(matches[0].becomesEmpty());
    EXPECT_FALSE(matches[1].becomesEmpty());
    EXPECT_TRUE(matches[2].becomesEmpty());
    const auto outcome = KeywordReplacement::apply(cues, u"嗯"_s, {});
    Subtitle kept = cues[2];
    kept.text = u"，好"_s;
    EXPECT_EQ(outcome.items, (QList{cues[1], kept}));
    EXPECT_EQ(outcome.occurrences, 4);
    EXPECT_EQ(outcome.changedCues, 3);
}

TEST(KeywordReplacement, a_word_replaced_by_itself_is_previewed_but_changes_nothing)
{
    const QList<Subtitle> cues = cuesOf({u"a b"_s});
    EXPECT_EQ(KeywordReplacement::matches(cues, u"a"_s, u"a"_s).size(), 1);
    const auto outcome = KeywordReplacement::apply(cues, u"a"_s, u"a"_s);
    EXPECT_EQ(outcome.items, cues);
    EXPECT_EQ(outcome.occurrences, 0);
    EXPECT_EQ(outcome.changedCues, 0);
}

TEST(KeywordReplacement, holds_its_limits_in_characters)
{
    const std::string empty = "请输入要查找的关键词。";
    const std::string tooLong = "查找词最多 200 字，替换内容最多 2000 字。";
    const std::string control = "替换内容含无效控制字符。";
    const QString family = u"👨‍👩‍👧"_s;
    for (const auto &[query, replacement, expected] : {
             std::tuple(u""_s, u"x"_s, empty),
             {u""_s, u"x"_s.repeated(2001), empty},
             {u"x"_s.repeated(200), u""_s, "accepted"},
             {u"x"_s.repeated(201), u""_s, tooLong},
             {family.repeated(200), family.repeated(2000), "accepted"},
             {family.repeated(201), u""_s, tooLong},
             {u"x"_s, u"x"_s.repeated(2001), tooLong},
             {u"x"_s, u"\r"_s.repeated(2001), tooLong},
             {u"x"_s, u"a\t\nb"_s, "accepted"},
             {u"x"_s, u"a\rb"_s, control},
             {u"x"_s, QString(QChar(u'\0')), control},
             {u"x\r"_s, u""_s, "accepted"},
         })
        EXPECT_EQ(refusal(query, replacement), expected) << query.left(5).toStdString();
    const QList<Subtitle> cues = cuesOf({u"x"_s.repeated(300)});
    EXPECT_EQ(KeywordReplacement::matches(cues, u"x"_s.repeated(200), {}).size(), 1);
    EXPECT_TRUE(KeywordReplacement::matches(cues, u"x"_s.repeated(201), {}).isEmpty());
    EXPECT_TRUE(KeywordReplacement::matches(cues, u"x"_s, u"y"_s.repeated(2001)).isEmpty());
    EXPECT_TRUE(KeywordReplacement::matches(cues, {}, {}).isEmpty());
}

TEST(KeywordReplacement, agrees_with_the_strings_own_replace_and_can_be_undone)
{
    Generator generator(2);
    const QStringList queries = {u"的"_s, u"a"_s, u"aa"_s, u"aab"_s, u"ab"_s, u"b😀"_s};
    for (int round = 0; round < 5'000; ++round) {
        QString text;
        for (qint64 left = generator.number(1, 20); left > 0; --left)
            text += generator.pick(QStringList{u"a"_s, u"b"_s, u"的"_s, u"😀"_s});
        const QString query = generator.pick(queries);
        const QString replacement = generator.pick(QStringList{u""_s, u"z"_s, u"aba"_s});
        QString after = text;
        after.replace(query, replacement);
        const QList<Subtitle> cues = cuesOf({text});
        const auto matches = KeywordReplacement::matches(cues, query, replacement);
        ASSERT_EQ(matches.isEmpty() ? text : matches[0].after, after) << text.toStdString();
        // ※ stands nowhere in the text, so that replacing it back is the inverse.
        const auto there = KeywordReplacement::apply(cues, query, u"※"_s);
        ASSERT_EQ(KeywordReplacement::apply(there.items, u"※"_s, query).items, cues);
    }
}
