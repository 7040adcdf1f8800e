#include "core/text/SubtitleCleanup.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "tests/support/Generator.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr SubtitleCleanup::Switches fillersOnly{.removeFillers = true};
constexpr SubtitleCleanup::Switches splitOnly{.removePunctuation = true};
constexpr SubtitleCleanup::Switches both{.removeFillers = true, .removePunctuation = true};

Subtitle cue(qint64 start, qint64 end, const QString &text, qint64 id = 1)
{
    return {.id = id, .start = start, .end = end, .text = text};
}

/// The rules as they are written down: patterns over the whole text.
QString removedByPatterns(const QString &text, QStringList words)
{
    if (words.isEmpty())
        return text;
    const auto pattern = [](const QString &p) {
        return QRegularExpression(p, QRegularExpression::UseUnicodePropertiesOption);
    };
    std::stable_sort(words.begin(), words.end(),
                     [](const QString &a, const QString &b) { return Characters::count(a) > Characters::count(b); });
    QStringList escaped;
    std::transform(words.begin(), words.end(), std::back_inserter(escaped),
                   [](const QString &word) { return QRegularExpression::escape(word); });
    const QString group = u"(?:"_s + escaped.join(u'|') + u")"_s;
    const bool exclaims = words.contains(u"哎呦"_s) || words.contains(u"哎哟"_s);
    static const QRegularExpression exclamation = pattern(uR"(^(?:哎[呦哟]我(?:去)?)[\p{P}\s]*$)"_s);
    static const QRegularExpression laughter = pattern(uR"(^哈+[\p{P}\s]*$)"_s);
    if ((exclaims && exclamation.match(text.trimmed()).hasMatch()) ||
        (words.contains(u"哈哈"_s) && laughter.match(text.trimmed()).hasMatch()))
        return {};
    const QRegularExpression clause =
        pattern(u"(^|[，,。！？!?；;：:])\\s*"_s + group + u"+[\\t ]*[，,。！？!?；;：:]"_s);
    QString rest = text;
    for (QString before; before != rest;) {
        before = rest;
        rest.replace(clause, u"\\1"_s);
    }
    return rest.remove(pattern(group + u'+')).trimmed();
}

QString generatedText(Generator &generator, const QStringList &pieces, int most)
{
    QString text;
    for (qint64 left = generator.number(0, most); left > 0; --left)
        text += generator.pick(pieces);
    return text;
}

} // namespace

TEST(SubtitleCleanup, reads_word_lists_as_people_type_them)
{
    for (const auto &[text, expected] : {
             std::pair(u"嗯\n啊，呃、嗯 ; "_s, QStringList{u"嗯"_s, u"啊"_s, u"呃"_s}),
             {u"嗯\r\n啊\r呃"_s, {u"嗯"_s, u"啊"_s, u"呃"_s}},
             {u"a,A；you know\u3000、\u00A0 x ,, "_s, {u"a"_s, u"A"_s, u"you know"_s, u"x"_s}},
             {u"好。吧!"_s, {u"好。吧!"_s}},
             {u" \n"_s, {}},
             {u""_s, {}},
         })
        EXPECT_EQ(SubtitleCleanup::words(text), expected) << text.toStdString();
}

TEST(SubtitleCleanup, keeps_word_lists_within_their_limits)
{
    QStringList hundred;
    for (int i = 0; i < 100; ++i)
        hundred += QString::number(i);
    const auto isSaved = [](const QString &text) {
        try {
            return !SubtitleCleanup::savedWords(text).isEmpty();
        } catch (const ConversionError &error) {
            EXPECT_EQ(error.message(), u"最多 100 个词，每个词不超过 60 字。"_s);
            return false;
        }
    };
    EXPECT_TRUE(isSaved(hundred.join(u'\n') + u"\n1\n2"_s));
    EXPECT_FALSE(isSaved(hundred.join(u'\n') + u"\nx"_s));
    EXPECT_TRUE(isSaved(u"👨‍👩‍👧"_s.repeated(60)));
    EXPECT_FALSE(isSaved(u"嗯"_s.repeated(61)));
}

TEST(SubtitleCleanup, removes_filler_words)
{
    const QStringList defaults = SubtitleCleanup::defaultFillerWords();
    EXPECT_EQ(defaults.join(u' '), u"啊 哦 嗯 呃 噢 喔 哎 哎呀 哎呦 哎哟 唉 哈哈"_s);
    for (const auto &[text, words, expected] : {
             std::tuple(u"嗯，啊，我们开始。"_s, defaults, u"我们开始。"_s),
             {u"好的。嗯，走"_s, defaults, u"好的。走"_s},
             {u"好啊，走"_s, defaults, u"好，走"_s},
             {u" 嗯嗯啊 ，走 "_s, defaults, u"走"_s},
             {u"走，\u3000嗯\t ；好"_s, defaults, u"走，好"_s},
             {u"走，嗯\n；好"_s, defaults, u"走，\n；好"_s},
             {u"嗯、走"_s, defaults, u"、走"_s},
             {u"哎呀，走"_s, defaults, u"走"_s},
             {u"哎呦我去！"_s, defaults, u""_s},
             {u" 哎哟我……》 "_s, {u"哎呦"_s}, u""_s},
             {u"哎呦我去吧"_s, defaults, u"我去吧"_s},
             {u"哎呦我去！"_s, {u"哎"_s}, u"呦我去！"_s},
             {u"哈哈哈。"_s, defaults, u""_s},
             {u"哈！"_s, defaults, u""_s},
             {u"哈哈哈。"_s, {u"哈哈哈"_s}, u""_s},
             {u"哈哈哈。"_s, {u"嗯"_s}, u"哈哈哈。"_s},
             {u"哈哈哈你"_s, defaults, u"哈你"_s},
             {u"1+a+b+2"_s, {u"a+b"_s}, u"1++2"_s},
             {u"aab+"_s, {u"a+b"_s, u"."_s, u"a|b"_s}, u"aab+"_s},
             {u" 走 "_s, {}, u" 走 "_s},
             {u" 走 "_s, {u"嗯"_s}, u"走"_s},
             {u"e\u0301e"_s, {u"e"_s, u"e\u0301"_s}, u"\u0301"_s},
             {u"e\u0301e"_s, {u"e\u0301"_s, u"e"_s}, u""_s},
         })
        EXPECT_EQ(SubtitleCleanup::removingFillers(text, words), expected) << text.toStdString();
}

TEST(SubtitleCleanup, removes_fillers_as_the_patterns_do)
{
    Generator generator(3);
    const QStringList pieces = {u"哈"_s, u"哈哈"_s,   u"哎"_s, u"呦"_s, u"哟"_s, u"我"_s, u"去"_s, u"嗯"_s,
                                u"，"_s, u"。"_s,     u"！"_s, u":"_s,  u"、"_s, u"…"_s,  u" "_s,  u"\t"_s,
                                u"\n"_s, u"\u3000"_s, u"a"_s,  u"b"_s,  u"+"_s,  u"😀"_s,  u"走"_s, u"\u0301"_s};
    // Words may hold clause marks and blanks, begin with them, contain each other, or be empty.
    const QStringList marked = {u"。嗯"_s, u"嗯。"_s, u"a b"_s, u" a"_s, u"a "_s, u"！"_s, u" "_s, u"嗯，a"_s, u""_s};
    for (int round = 0; round < 30'000; ++round) {
        QStringList words;
        for (qint64 left = generator.number(0, 5); left > 0; --left) {
            const QString word = generator.chance(15) ? generator.pick(marked) : generatedText(generator, pieces, 3);
            words += generator.chance(80) ? word.trimmed() : word;
        }
        if (generator.chance(30))
            words += SubtitleCleanup::defaultFillerWords();
        const QString text = generatedText(generator, generator.chance(60) ? pieces : pieces.first(10), 24);
        ASSERT_EQ(SubtitleCleanup::removingFillers(text, words), removedByPatterns(text, words))
            << "text: " << text.toStdString() << "\nwords: " << words.join(u'|').toStdString();
    }
}

TEST(SubtitleCleanup, shares_a_cues_time_out_among_its_clauses)
{
    struct Row
    {
        Subtitle cue;
        SubtitleCleanup::Switches switches;
        QList<Subtitle> expected;
    };
    for (const auto &[given, switches, expected] : {
             Row{cue(0, 3000, u"你好，世界。再见"_s),
                 both,
                 {cue(0, 1000, u"你好"_s, 1), cue(1000, 2000, u"世界"_s, 2), cue(2000, 3000, u"再见"_s, 3)}},
             // Halves are rounded away from zero; clauses that are dropped keep their share.
             {cue(10, 15, u"一。二"_s), splitOnly, {cue(10, 13, u"一"_s, 1), cue(13, 15, u"二"_s, 2)}},
             {cue(0, 900, u"嗯，。走…吧！"_s), both, {cue(225, 900, u"走吧"_s, 1)}},
             {cue(0, 2, u"一，二，三，四，五"_s), splitOnly, {cue(0, 1, u"二"_s, 1), cue(1, 2, u"四"_s, 2)}},
             {cue(0, 1000, u"👨‍👩‍👧x，e\u0301\u0323f"_s),
              splitOnly,
              {cue(0, 500, u"👨‍👩‍👧x"_s, 1), cue(500, 1000, u"e\u0301\u0323f"_s, 2)}},
             {cue(0, 1000, u"“好、（不）”《x》_-"_s), splitOnly, {cue(0, 1000, u"好不x"_s, 1)}},
             {cue(0, 1000, u"嗯，好。"_s), fillersOnly, {cue(0, 1000, u"好。"_s, 1)}},
             {cue(0, 1000, u" 好。\n"_s), {}, {cue(0, 1000, u"好。"_s, 1)}},
             {cue(0, 1000, u"……"_s), fillersOnly, {}},
             {cue(0, 1000, u"❤️ ☺"_s), {}, {}},
             {cue(0, 1000, u"①"_s), both, {cue(0, 1000, u"①"_s, 1)}},
             {cue(5, 5, u"好"_s), {}, {}},
             {cue(0, 1000, u"，。"_s), splitOnly, {}},
             {cue(0, 1000, u""_s), splitOnly, {}},
         })
        EXPECT_EQ(SubtitleCleanup::apply({given}, switches, SubtitleCleanup::defaultFillerWords()), expected)
            << given.text.toStdString();
}

TEST(SubtitleCleanup, numbers_cues_afresh_over_the_whole_list)
{
    const QList<Subtitle> cleaned = SubtitleCleanup::apply(
        {cue(0, 10, u"嗯"_s, 7), cue(10, 20, u"一，二"_s, 9), cue(5, 9, u"三"_s, 9)}, both, {u"嗯"_s});
    EXPECT_EQ(cleaned, (QList{cue(10, 15, u"一"_s, 1), cue(15, 20, u"二"_s, 2), cue(5, 9, u"三"_s, 3)}));
    EXPECT_TRUE(SubtitleCleanup::apply({}, both, {u"嗯"_s}).isEmpty());
}

TEST(SubtitleCleanup, pieces_stay_within_their_cue_in_order_and_lose_nothing_but_fillers_and_marks)
{
    Generator generator(4);
    const QStringList pieces = {
        u"好"_s, u"走"_s, u"嗯"_s, u"，"_s, u"。"_s, u"a"_s, u" "_s, u"《"_s, u"👨‍👩‍👧"_s, u"\u0301"_s};
    for (int round = 0; round < 10'000; ++round) {
        const qint64 start = generator.number(0, 400'000'000);
        const Subtitle given = cue(start, start + generator.number(100, 20'000), generatedText(generator, pieces, 30));
        QString kept;
        qint64 time = given.start;
        for (const Subtitle &piece : SubtitleCleanup::apply({given}, splitOnly, {})) {
            ASSERT_LE(time, piece.start);
            ASSERT_LT(piece.start, piece.end);
            ASSERT_LE(piece.end, given.end);
            time = piece.end;
            kept += piece.text;
        }
        // A cue this long has room for every clause.
        const QRegularExpression others(u"[^好走嗯a]"_s);
        ASSERT_EQ(kept.remove(others), QString(given.text).remove(others)) << given.text.toStdString();
    }
}
