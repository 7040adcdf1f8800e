#include "core/timing/ScriptTiming.h"

#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/timing/SpeechBorders.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const auto noCheck = [] {};

constexpr qint64 syllableMS = 200;

/// Speaks: words of one character each, evenly, with pauses where the speaker breathes.
class Speaker
{
public:
    void say(const QString &text)
    {
        for (const QChar character : text) {
            if (character.isLetterOrNumber())
                words.append({.text = character, .startMS = now, .endMS = now + syllableMS});
            now += character.isLetterOrNumber() ? syllableMS : 0;
        }
    }
    void pause(qint64 milliseconds) { now += milliseconds; }

    QList<HeardWord> words;
    qint64 now = 1'000;
};

ScriptTimingResult timed(const QString &script, const QList<HeardWord> &words, int columns = 16)
{
    return ScriptTiming::timed(script, words, {.columns = columns, .grid = {.numerator = 25}}, noCheck);
}

QStringList texts(const ScriptTimingResult &result)
{
    QStringList all;
    for (const TimedCue &each : result.cues)
        all += each.cue.text;
    return all;
}

std::string described(const TimedCue &each)
{
    return u"%1-%2 %3%4"_s.arg(each.cue.start)
        .arg(each.cue.end)
        .arg(each.cue.text, each.isUnsure ? u" ?"_s : QString())
        .toStdString();
}

std::vector<std::string> described(const ScriptTimingResult &result)
{
    std::vector<std::string> all;
    std::ranges::transform(result.cues, std::back_inserter(all), [](const TimedCue &each) { return described(each); });
    return all;
}

/// A line of a script, and when it was spoken well; absent when what was heard of it is damaged on purpose.
struct Line
{
    QString text;
    std::optional<qint64> startMS = {};
    qint64 endMS = 0;
};

} // namespace

TEST(ScriptTiming, takes_wording_from_the_script_and_times_from_the_sound)
{
    Speaker speaker;
    speaker.say(u"大家好"_s);
    speaker.pause(1'000);
    speaker.say(u"我是第一次拍视频"_s);
    EXPECT_EQ(described(timed(u"\r\n大家好！\r\n\r\n  我是第一次，拍视频。\n"_s, speaker.words)),
              (std::vector<std::string>{"1000-1600 大家好！", "2600-4200 我是第一次，拍视频。"}));
    // A line that is too wide is broken, and both halves have times of their own.
    EXPECT_EQ(described(timed(u"大家好！我是第一次，拍视频。"_s, speaker.words, 10)),
              (std::vector<std::string>{"1000-1600 大家好！", "2600-4200 我是第一次，拍视频。"}));
}

TEST(ScriptTiming, hears_the_same_in_other_writings)
{
    const auto confidence = [](const QString &script, const QString &heard) {
        Speaker speaker;
        speaker.say(u"前面这句话完全一样"_s + heard + u"后面这句话也完全一样"_s);
        return timed(u"前面这句话完全一样\n"_s + script + u"\n后面这句话也完全一样"_s, speaker.words)
            .cues[1]
            .confidence;
    };
    for (const auto &[script, heard] : {
             std::pair{u"一共二十三个"_s, u"一共23个"_s},
             std::pair{u"１０５米"_s, u"一百零五米"_s},
             std::pair{u"3.2万人"_s, u"3.2万人"_s},
             std::pair{u"三万二千人"_s, u"32000人"_s},
             std::pair{u"两千五"_s, u"2500"_s},
             std::pair{u"一百二"_s, u"120"_s},
             std::pair{u"2026年"_s, u"二〇二六年"_s},
             std::pair{u"1500万"_s, u"一千五百万"_s},
             std::pair{u"十五、二十"_s, u"15 20"_s},
             std::pair{u"后来头发"_s, u"後來頭髮"_s},
             std::pair{u"Café ＯＫ"_s, u"cafe ok"_s},
         })
        EXPECT_EQ(confidence(script, heard), 1) << script.toStdString();
    EXPECT_EQ(confidence(u"他在做"_s, u"她再坐"_s), 0.5); // read alike
    EXPECT_EQ(confidence(u"重庆"_s, u"重新"_s), 0.5);     // half is another word
    EXPECT_EQ(confidence(u"一些"_s, u"二些"_s), 0.5);
}

TEST(ScriptTiming, places_what_was_not_heard_between_its_neighbours_and_says_so)
{
    Speaker speaker;
    speaker.say(u"第一句说得清清楚楚"_s);
    speaker.pause(2'000);
    speaker.say(u"第三句也说得很清楚"_s);
    EXPECT_EQ(described(timed(u"这里没有人说\n第一句说得清清楚楚\n中间漏掉两个字啊\n啊\n第三句也说得很清楚\n结尾没说"_s,
                              speaker.words)),
              (std::vector<std::string>{"0-1000 这里没有人说 ?", "1000-2800 第一句说得清清楚楚",
                                        "2800-4560 中间漏掉两个字啊 ?", "4560-4800 啊 ?",
                                        "4800-6600 第三句也说得很清楚", "6600-7400 结尾没说 ?"}));
    const auto result = timed(u"第一句说得清清楚楚\n中间漏掉两个字啊\n啊\n第三句也说得很清楚"_s, speaker.words);
    EXPECT_EQ(result.unspoken, (QList<UnspokenPassage>{{.cueID = 2, .text = u"中间漏掉两个字啊\n啊"_s}}));
    EXPECT_EQ(result.unsureCount(), 2);

    // Where the neighbours touch, each gives some frames: nothing overlaps and nothing is lost.
    Speaker hurried;
    hurried.say(u"第一句说得清清楚楚第三句也说得很清楚"_s);
    EXPECT_EQ(described(timed(u"第一句说得清清楚楚\n漏一\n漏二\n漏三\n第三句也说得很清楚"_s, hurried.words)),
              (std::vector<std::string>{"1000-2720 第一句说得清清楚楚", "2720-2760 漏一 ?", "2760-2800 漏二 ?",
                                        "2800-2840 漏三 ?", "2840-4600 第三句也说得很清楚"}));
}

TEST(ScriptTiming, lists_what_is_in_no_script_and_marks_what_was_said_twice)
{
    Speaker speaker;
    speaker.say(u"我们先看一下这个镜头"_s);
    speaker.say(u"等一下手机响了"_s);
    speaker.say(u"然后把它拖到时间线上"_s);
    speaker.pause(500);
    speaker.say(u"然后把它拖到时间线上"_s);
    const auto result = timed(u"我们先看一下这个镜头\n然后把它拖到时间线上"_s, speaker.words);
    EXPECT_EQ(described(result),
              (std::vector<std::string>{"1000-3000 我们先看一下这个镜头", "6920-8920 然后把它拖到时间线上 ?"}));
    ASSERT_EQ(result.unscripted.size(), 1);
    EXPECT_EQ(result.unscripted[0], (Subtitle{1, 3'000, 6'400, u"等一下手机响了然后把它拖到时间线上"_s}));

    const QList<HeardWord> english = {{.text = u"so"_s, .startMS = 0, .endMS = 300},
                                      {.text = u"hello"_s, .startMS = 300, .endMS = 900},
                                      {.text = u"good"_s, .startMS = 900, .endMS = 1'200},
                                      {.text = u"world"_s, .startMS = 1'200, .endMS = 1'500}};
    EXPECT_EQ(timed(u"Hello world"_s, english).unscripted.value(0).text, u"good"_s);
}

TEST(ScriptTiming, finds_its_way_through_a_damaged_recognition)
{
    constexpr int lineCount = 400;
    Generator generator(23);
    Speaker speaker;
    std::vector<Line> lines;
    QString script;
    for (int i = 0; i < lineCount; ++i) {
        Line line{.text = generator.speech(6, 14)};
        script += line.text + u'\n';
        const bool isLeftOut = i >= 100 && i < 112;
        const bool isNoise = i >= 200 && i < 208;
        const bool isRepeated = i >= 300 && i < 306;
        if (i == 50)
            speaker.say(generator.speech(150, 200)); // improvised
        line.startMS = isLeftOut || isNoise || isRepeated ? std::nullopt : std::optional(speaker.now);
        if (isNoise)
            speaker.pause(2'500);
        else if (!isLeftOut)
            speaker.say(line.text);
        line.endMS = speaker.now;
        if (!isLeftOut)
            speaker.pause(generator.number(0, 600));
        lines.push_back(line);
        if (i == 305) { // once more
            for (size_t again = 300; again < 306; ++again)
                speaker.say(lines[again].text);
        }
    }
    QList<HeardWord> words;
    for (HeardWord word : std::as_const(speaker.words)) {
        if (generator.chance(5))
            continue;
        if (generator.chance(5))
            word.text = generator.speech(1, 1);
        words.append(word);
    }

    const ScriptTimingResult result = timed(script, words, 100);
    EXPECT_EQ(texts(result).join(u'\n') + u'\n', script);
    int unharmed = 0;
    int exact = 0;
    int sure = 0;
    qint64 free = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const TimedCue &found = result.cues[qsizetype(i)];
        EXPECT_TRUE(found.cue.start >= free && found.cue.end > found.cue.start) << i << described(found);
        free = found.cue.end;
        if (!lines[i].startMS)
            continue;
        const qint64 off =
            std::max(std::abs(found.cue.start - *lines[i].startMS), std::abs(found.cue.end - lines[i].endMS));
        ++unharmed;
        exact += off <= 200 ? 1 : 0;
        sure += found.isUnsure ? 0 : 1;
        EXPECT_TRUE(off <= 2'000 || found.isUnsure) << i << ' ' << off << ' ' << described(found);
    }
    EXPECT_GE(exact * 100, unharmed * 97) << exact << " of " << unharmed;
    EXPECT_GE(sure * 100, unharmed * 95) << sure << " of " << unharmed;
    const auto repeated = result.cues.sliced(300, 6);
    EXPECT_GE(std::ranges::count(repeated, true, &TimedCue::isUnsure), 5); // one take may be too damaged to be known
    EXPECT_TRUE(
        std::ranges::any_of(result.unspoken, [&](const auto &each) { return each.text.contains(lines[105].text); }));
}

TEST(ScriptTiming, refuses_what_has_nothing_to_do_with_the_sound)
{
    Speaker speaker;
    speaker.say(u"完全是另外一回事"_s);
    const auto refusal = [](const QString &script, const QList<HeardWord> &words) {
        try {
            timed(script, words);
            return QString();
        } catch (const ConversionError &error) {
            return error.message();
        }
    };
    EXPECT_EQ(refusal(u"Nothing"_s, speaker.words), u"文稿与声音没有对应的内容，请确认语言和段落一致。"_s);
    EXPECT_EQ(refusal(u" \n"_s, speaker.words), u"文稿没有文字。"_s);
    EXPECT_EQ(refusal(u"有字"_s, {}), u"声音里没有识别到词语，无法为文稿定时。"_s);
    EXPECT_THROW(ScriptTiming::timed(u"完全"_s, speaker.words, {}, [] { throw Cancelled(); }), Cancelled);
}

TEST(SpeechBorders, move_sure_cues_to_where_speech_begins_and_ends)
{
    // Quiet, a click, speech from 1 s to 2 s with a stop in it, quiet, speech from 3 s to 4 s.
    QList<quint16> peaks(500, 20);
    std::fill_n(peaks.begin() + 50, 3, 9'000);
    std::fill_n(peaks.begin() + 100, 100, 8'000);
    std::fill_n(peaks.begin() + 150, 8, 20);
    std::fill_n(peaks.begin() + 300, 100, 8'000);
    const SpeechBorders borders(peaks);
    EXPECT_EQ(borders.onset(1'150, 200), 1'000);
    EXPECT_EQ(borders.onset(1'201, 200), std::nullopt);
    EXPECT_EQ(borders.onset(500, 200), std::nullopt);
    EXPECT_EQ(borders.end(1'900, 200), 2'000);
    EXPECT_EQ(SpeechBorders(QList<quint16>(500, 8'000)).onset(0, 200), std::nullopt);

    const auto cue = [](qint64 start, qint64 end, bool isUnsure) {
        return TimedCue{
            .cue = {.id = 1, .start = start, .end = end, .text = {}}, .confidence = 1, .isUnsure = isUnsure};
    };
    const auto snapped = TimedCues::snapped(
        {cue(1'120, 1'880, false), cue(3'080, 3'520, true), cue(3'520, 4'120, false)}, borders, {.numerator = 25});
    EXPECT_EQ(snapped, (QList{cue(1'000, 2'000, false), cue(3'080, 3'520, true), cue(3'520, 4'000, false)}));
}
