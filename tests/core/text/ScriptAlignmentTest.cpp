#include "core/text/ScriptAlignment.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/text/Characters.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> cuesOf(const QStringList &texts)
{
    QList<Subtitle> cues;
    for (const QString &text : texts) {
        const qint64 start = cues.size() * 1000;
        cues.append({.id = 50 + cues.size(), .start = start, .end = start + 900, .text = text});
    }
    return cues;
}

ScriptMatchResult match(const QString &transcript, const QStringList &texts)
{
    return ScriptAlignment::match(transcript, cuesOf(texts), [] {});
}

/// A row as "replacement 0.75 +": the confidence in hundredths, + for selected, "–" for no replacement.
std::string row(const ScriptMatchRow &row)
{
    if (!row.replacement)
        return "–";
    return (*row.replacement + u' ' + QString::number(std::floor(row.confidence * 100) / 100) +
            (row.selected ? u" +"_s : u""_s))
        .toStdString();
}

std::string rows(const ScriptMatchResult &result)
{
    std::string all;
    for (const ScriptMatchRow &one : result.rows)
        all += (all.empty() ? "" : " | ") + row(one);
    return all;
}

std::string refusal(const QString &transcript, const QList<Subtitle> &cues)
{
    try {
        ScriptAlignment::match(transcript, cues, [] {});
        return "accepted";
    } catch (const ConversionError &error) {
        return error.what();
    }
}

QString unitsOf(const QString &text)
{
    QString units;
    for (Characters::Cursor at(text); at.next();) {
        const Characters::Scalars scalars(at.character());
        if (std::any_of(scalars.begin(), scalars.end(), Characters::isAlphanumeric))
            units += at.character();
    }
    return units;
}

constexpr auto nothingCorresponds = "文稿与字幕没有足够的对应内容，请确认语言和段落一致，或分段匹配。原字幕已保留。";

} // namespace

TEST(ScriptAlignment, proposes_a_passage_for_each_cue)
{
    struct Row
    {
        QStringList cues;
        QString transcript;
        std::string expected;
        QString unmatched;
    };
    for (const auto &[cues, transcript, expected, unmatched] : {
             // Punctuation goes with the words before it, and with the first words what stands before them.
             Row{{u"今天天气很好"_s, u"我们去公园"_s},
                 u"“今天天气，很好。”我们去公园！"_s,
                 "“今天天气，很好。” 1 + | 我们去公园！ 1 +",
                 {}},
             {{u"今天天汽很好"_s}, u"今天天气很好。"_s, "今天天气很好。 0.83 +", {}},
             // Case, accents and width do not count.
             {{u"CAFE ok １２３"_s}, u"Café ＯＫ 123"_s, "Café ＯＫ 123 1 +", {}},
             // A passage that equals the text is matched but has nothing to apply.
             {{u"今天，天气很好"_s}, u"今天，天气很好"_s, "今天，天气很好 1", {}},
             // Line feeds become one space a run.
             {{u"今天天气"_s}, u"\n今天\n\n天\t气\n \n"_s, "今天 天\t气 1 +", {}},
             // A cue of one character needs that one.
             {{u"好"_s, u"走吧走吧"_s}, u"好。走吧走吧。"_s, "好。 1 + | 走吧走吧。 1 +", {}},
             {{u"嗯"_s, u"走吧走吧"_s}, u"走吧走吧。"_s, "– | 走吧走吧。 1 +", {}},
             {{u"——"_s, u"走吧走吧"_s}, u"走吧走吧。"_s, "– | 走吧走吧。 1 +", {}},
             // One match is too few for two characters, and four in ten is the least.
             {{u"好的"_s, u"走吧走吧"_s}, u"好。走吧走吧。"_s, "– | 走吧走吧。 1 +", u"好。"_s},
             {{u"甲乙丙丁戊"_s}, u"甲乙"_s, "甲乙 0.4", {}},
             {{u"甲乙丙丁戊己"_s, u"走吧走吧"_s}, u"甲乙走吧走吧。"_s, "– | 走吧走吧。 1 +", u"甲乙"_s},
             // Under 0.7 nothing is selected.
             {{u"甲乙丙丁戊己庚辛壬癸"_s}, u"甲乙丙丁戊己庚"_s, "甲乙丙丁戊己庚 0.7 +", {}},
             {{u"甲乙丙丁戊己庚辛壬"_s}, u"甲乙丙丁戊己"_s, "甲乙丙丁戊己 0.66", {}},
             // A short cue may span twelve characters, a longer one twice its own length.
             {{u"甲乙丙丁戊"_s}, u"甲一二三四五六七乙丙丁戊"_s, "甲一二三四五六七乙丙丁戊 0.41", {}},
             {{u"甲乙丙丁戊己"_s}, u"甲一二三四五六七乙丙丁戊己"_s, "–", u""_s},
             // Neighbours in a passage may be twelve apart.
             {{u"甲乙丙丁戊己庚辛壬癸子丑"_s},
              u"甲乙丙丁戊己一二三四五六七八九十零庚辛壬癸子丑"_s,
              "甲乙丙丁戊己一二三四五六七八九十零庚辛壬癸子丑 0.52",
              {}},
             {{u"甲乙丙丁戊己庚辛壬癸子丑"_s}, u"甲乙丙丁戊己一二三四五六七八九十零百庚辛壬癸子丑"_s, "–", u""_s},
         }) {
        if (expected == "–") {
            EXPECT_EQ(refusal(transcript, cuesOf(cues)), nothingCorresponds) << transcript.toStdString();
            continue;
        }
        const ScriptMatchResult result = match(transcript, cues);
        EXPECT_EQ(rows(result), expected);
        EXPECT_EQ(result.unmatchedPassages.join(u'|'), unmatched);
    }
}

TEST(ScriptAlignment, wrong_text_is_not_selected)
{
    const QString first = u"大家好，欢迎来到今天的节目，我们聊一聊城市里的老房子。"_s;
    const QString second = u"第二个问题是钱从哪里来，这件事情谁也没有把握。"_s;
    const QString third = u"最后感谢各位收看，我们下周同一时间再见。"_s;
    const QStringList cues = {u"大家好欢迎来到今天的节目"_s, u"我们聊一聊城市里的老房子"_s, u"第二个问题是钱从哪里来"_s,
                              u"这件事情谁也没有把握"_s,     u"最后感谢各位收看"_s,         u"我们下周同一时间再见"_s};
    // A paragraph missing, one more, and two in another order: what corresponds is proposed, the rest keeps its text.
    const auto missing = match(first + u'\n' + third, cues);
    EXPECT_EQ(rows(missing),
              "大家好，欢迎来到今天的节目， 1 + | 我们聊一聊城市里的老房子。 1 + | – | – | 最后感谢各位收看， 1 + | "
              "我们下周同一时间再见。 1 +");
    EXPECT_TRUE(missing.unmatchedPassages.isEmpty());
    const auto extra = match(first + u"\n中间插播一条广告。\n广告完了。\n"_s + second + third, cues);
    EXPECT_EQ(extra.matchedCount(), 6);
    EXPECT_EQ(extra.unmatchedPassages, QStringList{u"中间插播一条广告。\n广告完了。"_s});
    const auto moved = match(second + first + third, cues);
    EXPECT_EQ(moved.matchedCount(), 4);
    EXPECT_EQ(moved.unmatchedPassages, QStringList{second});

    // The misheard cue before a paragraph that was never spoken keeps to its own words, not to the same ones in there.
    const QStringList misheard = {u"大家好欢迎来到今天的节木的"_s, u"我们聊一聊城市里的老房子"_s};
    EXPECT_EQ(
        rows(match(
            u"大家好，欢迎来到今天的节目的。广告之后是精彩的内容。这是多么美好的世界。我们聊一聊城市里的老房子。"_s,
            misheard)),
        "大家好，欢迎来到今天的节目的。 0.92 + | 我们聊一聊城市里的老房子。 1 +");

    // Numbers in digits, homophones throughout, another sentence of the same frame.
    EXPECT_EQ(rows(match(u"公司在2024年成立了。我们走吧。"_s, {u"公司在二零二四年成立"_s, u"我们走吧"_s})),
              "公司在2024年成立 0.6 | 我们走吧。 1 +");
    EXPECT_EQ(rows(match(u"权利与义务。我们走吧。"_s, {u"全力雨一雾"_s, u"我们走吧"_s})), "– | 我们走吧。 1 +");
    EXPECT_EQ(rows(match(u"他昨天从北京回来。我们走吧。"_s, {u"她今天到上海去"_s, u"我们走吧"_s})),
              "– | 我们走吧。 1 +");
}

TEST(ScriptAlignment, tells_changed_words_from_changed_punctuation)
{
    struct Row
    {
        QString before;
        QString after;
        bool changesWords;
    };
    const Row rows[] = {
        {u"今天我们聊调色"_s, u"今天，我们聊“调色”。"_s, false},
        {u"你好\nHello"_s, u"你好 Hello!"_s, false},
        {u"so well"_s, u"So, well…"_s, true}, // the letter
        {u"hello world"_s, u"hello, world."_s, false},
        {u"今天我们辽调色"_s, u"今天，我们聊调色。"_s, true},
        {u"1.5倍速"_s, u"15倍速"_s, true},
        {u"every day"_s, u"everyday"_s, true},
        {u"it's"_s, u"its"_s, true},
        {u"涨了50"_s, u"涨了50%"_s, true},
        {u"用 AE 做"_s, u"用AE做"_s, false},
        {u"好"_s, u"好"_s, false},
    };
    ScriptMatchRow match;
    for (const Row &row : rows) {
        match.original.text = row.before;
        match.replacement = row.after;
        EXPECT_EQ(ScriptAlignment::changesWords(match), row.changesWords) << qPrintable(row.after);
    }
    match.replacement.reset();
    EXPECT_FALSE(ScriptAlignment::changesWords(match)) << "nothing is proposed";
}

TEST(ScriptAlignment, repeated_lines_are_matched_in_order)
{
    const auto result =
        match(u"好的，好的。我们走吧。好的！好的！再见。"_s, {u"好的好的"_s, u"我们走吧"_s, u"好的好的"_s, u"再见"_s});
    EXPECT_EQ(rows(result), "好的，好的。 1 + | 我们走吧。 1 + | 好的！好的！ 1 + | 再见。 1 +");
}

TEST(ScriptAlignment, refuses_what_it_cannot_work_with)
{
    const QList<Subtitle> good = cuesOf({u"今天天气很好"_s});
    const auto with = [&](qint64 start, qint64 end, const QString &text) {
        return good + QList{Subtitle{.id = 1, .start = start, .end = end, .text = text}};
    };
    const QString transcript = u"今天天气很好"_s;
    const std::string tooLong = "请使用 4 万字以内的纯文稿；较长内容可分段匹配。";
    const std::string badCue = "字幕时间或文字无效，请先检查字幕。";
    const QList<Subtitle> manyUnits(14, {.id = 1, .start = 0, .end = 1, .text = u"字"_s.repeated(4'000)});
    const auto ofUnits = [&](qsizetype count) { return manyUnits + with(0, 1, u"字"_s.repeated(count - 56'000 - 6)); };
    for (const auto &[script, cues, expected] : {
             std::tuple(u"\r"_s, QList<Subtitle>(), std::string("请先导入已有字幕。")),
             {transcript + u"x"_s.repeated(39'994), good, "accepted"},
             {transcript + u"x"_s.repeated(39'995), good, tooLong},
             {transcript + u'x' + u"👨‍👩‍👧"_s.repeated(39'993), good, "accepted"},
             {transcript, QList<Subtitle>(10'000, good[0]), "accepted"},
             {transcript, QList<Subtitle>(10'001, good[0]), tooLong},
             {transcript + u"\t\n"_s, good, "accepted"},
             {transcript + u"\r\n"_s, good, tooLong},
             {u"\v"_s, with(-1, 1, {}), tooLong},
             {transcript, with(0, 1, {}), "accepted"},
             {transcript, with(-1, 1, {}), badCue},
             {transcript, with(1, 1, {}), badCue},
             {transcript, with(0, 1, u"。"_s.repeated(4'000)), "accepted"},
             {u"。"_s, with(0, 1, u"。"_s.repeated(4'001)), badCue},
             {u"？ 😀"_s, good, "请粘贴需要匹配的文稿正文。"},
             {{}, ofUnits(60'001), "请粘贴需要匹配的文稿正文。"},
             {transcript, ofUnits(60'000), "accepted"},
             {transcript, ofUnits(60'001), "字幕内容过长或没有有效文字，请分段匹配。"},
             {u"The weather is fine."_s, good, nothingCorresponds},
             {transcript, cuesOf({u"……"_s}), nothingCorresponds},
             {transcript + u"。"_s.repeated(3'994), good, "accepted"},
             {transcript + u"。"_s.repeated(3'995), good, "单条匹配文稿过长，请将文稿分段后再试。"},
         })
        EXPECT_EQ(refusal(script, cues), expected) << script.left(10).toStdString() << ", " << cues.size() << " cues";
}

TEST(ScriptAlignment, ends_when_it_is_cancelled)
{
    int calls = 0;
    const auto cancelAt = [&](int last) {
        calls = 0;
        return [&calls, last] {
            if (++calls > last)
                throw Cancelled();
        };
    };
    const QList<Subtitle> cues = Generator(8).cues(50);
    QString transcript;
    for (const Subtitle &cue : cues)
        transcript += cue.text + u'。';
    ScriptAlignment::match(transcript, cues, cancelAt(1'000'000));
    const int all = calls;
    EXPECT_GT(all, 50);
    for (int last = 0; last < all; ++last)
        EXPECT_THROW(ScriptAlignment::match(transcript, cues, cancelAt(last)), Cancelled);
}

TEST(ScriptAlignment, keeps_every_id_and_time_and_shares_the_transcript_out_once)
{
    Generator generator(9);
    int matched = 0;
    for (int round = 0; round < 300; ++round) {
        const QList<Subtitle> cues = generator.cues(generator.number(1, 40));
        QString transcript;
        for (const Subtitle &cue : cues) {
            for (const QChar unit : cue.text) {
                if (!generator.chance(8))
                    transcript += unit;
                if (generator.chance(8))
                    transcript += generator.speech(1, 2);
            }
            transcript += generator.pick(QStringList{u"，"_s, u"。”\n\n"_s, u" "_s, u""_s});
            if (generator.chance(5))
                transcript += generator.speech(20, 60);
        }
        ScriptMatchResult result;
        try {
            result = ScriptAlignment::match(transcript, cues, [] {});
        } catch (const ConversionError &error) {
            ASSERT_EQ(error.what(), std::string(nothingCorresponds));
            continue;
        }
        ASSERT_EQ(result.rows.size(), cues.size());
        QString shared = result.unmatchedPassages.join(u' ');
        for (qsizetype i = 0; i < cues.size(); ++i) {
            const ScriptMatchRow &one = result.rows[i];
            ASSERT_EQ(one.id, i);
            ASSERT_EQ(one.original, cues[i]);
            ASSERT_EQ(one.replacement.has_value(), one.confidence >= 0.4);
            ASSERT_EQ(one.selected, one.confidence >= 0.7 && one.changed());
            ASSERT_EQ(one.needsReview(), one.confidence < 0.7);
            shared += one.replacement.value_or(QString());
        }
        matched += static_cast<int>(result.matchedCount());
        QString given = unitsOf(transcript);
        shared = unitsOf(shared);
        std::sort(given.begin(), given.end());
        std::sort(shared.begin(), shared.end());
        ASSERT_EQ(shared, given);

        const QList<Subtitle> applied = ScriptAlignment::apply(result.rows);
        for (qsizetype i = 0; i < cues.size(); ++i) {
            Subtitle expected = cues[i];
            if (result.rows[i].selected)
                expected.text = *result.rows[i].replacement;
            ASSERT_EQ(applied[i], expected);
        }
    }
    EXPECT_GT(matched, 1'000);
}
