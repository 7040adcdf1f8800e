#include "ai/speech/SpeechSubtitleAPI.h"

#include "ai/SubtitleGeneration.h"
#include "ai/speech/SpokenWords.h"
#include "core/Cancelled.h"
#include "core/PlatformError.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using SubtitleAI::NoSpeech;

namespace {

template <class Step>
QString refusal(Step &&step)
{
    try {
        step();
    } catch (const ConversionError &error) {
        return error.message();
    }
    return {};
}

QString lines(const QList<Subtitle> &cues)
{
    QStringList result;
    for (const Subtitle &cue : cues)
        result.append(u"%1-%2 %3"_s.arg(cue.start).arg(cue.end).arg(cue.text));
    return result.join(u'|');
}

constexpr auto untimed = u"此接口没有返回字幕时间戳。仅返回 text 的聊天/转写模型不能直接生成带时间字幕；"
                         "请使用支持 segments 或 words 的模型。";
constexpr auto incompatible = u"音频接口返回格式不兼容。需要含 segments 或 words 时间戳的 verbose_json。";
constexpr auto badTimes = u"音频接口返回了无效时间戳，原字幕已保留。";
constexpr auto backwards = u"音频接口返回了倒序或不完整的字幕，原字幕已保留。";
constexpr auto silent = u"音频接口未返回有效语音，请检查音轨与语言。";

} // namespace

TEST(SpeechAPIConfiguration, only_a_safe_address_of_a_service_for_audio_is_accepted)
{
    const auto endpoint = [](const QString &url, const QString &model) {
        return SpeechAPIConfiguration{.baseURL = url, .model = model, .apiKey = {}}.endpoint().toString();
    };
    EXPECT_EQ(endpoint(u"https://api.test/v1/"_s, u"whisper-1"_s), u"https://api.test/v1/audio/transcriptions"_s);
    EXPECT_EQ(endpoint(u"http://localhost:8080/v1/audio/transcriptions"_s, u"x"_s),
              u"http://localhost:8080/v1/audio/transcriptions"_s);
    EXPECT_EQ(refusal([&] { endpoint(u"http://api.test/v1"_s, u"x"_s); }),
              u"音频转写地址需使用 HTTPS；本机服务可使用 localhost 或 127.0.0.1。"_s);
    EXPECT_TRUE(refusal([&] { endpoint(u"https://api.DeepSeek.com"_s, u"x"_s); }).startsWith(u"此配置是文字聊天接口"));
    EXPECT_TRUE(
        refusal([&] { endpoint(u"https://api.test"_s, u"DeepSeek-chat"_s); }).startsWith(u"此配置是文字聊天接口"));
    EXPECT_EQ(refusal([&] { endpoint(u"https://api.test"_s, u" "_s); }), u"请填写语音识别模型名称。"_s);
}

TEST(SpeechSubtitleAPI, a_long_track_is_cut_into_pieces_that_overlap)
{
    const QList<SpeechChunk> expected = {
        {0, 481'000, 0, 480'000}, {479'000, 961'000, 480'000, 960'000}, {959'000, 1'200'000, 960'000, 1'200'000}};
    EXPECT_EQ(SpeechSubtitleAPI::chunks(1'200'000), expected);
    EXPECT_EQ(SpeechSubtitleAPI::chunks(480'000).size(), 1);
    EXPECT_EQ(SpeechSubtitleAPI::chunks(480'001).size(), 2);
    EXPECT_TRUE(SpeechSubtitleAPI::chunks(0).isEmpty());
    EXPECT_TRUE(SpeechSubtitleAPI::chunks(5, 0).isEmpty());
    EXPECT_TRUE(SpeechSubtitleAPI::chunks(5, 1, -1).isEmpty());
}

TEST(SpeechSubtitleAPI, a_phrase_on_a_border_is_there_once)
{
    const QList<SpeechChunk> pieces = SpeechSubtitleAPI::chunks(600'000);
    // The same phrase as each of the two pieces heard it: 479,400 to 480,800 ms.
    const auto first = SpeechSubtitleAPI::merge({{1, 479'400, 480'800, u"x"_s}}, pieces[0], 600'000);
    const auto second = SpeechSubtitleAPI::merge({{1, 400, 1'800, u"x"_s}}, pieces[1], 600'000);
    EXPECT_EQ(lines(first + second), u"479400-480800 x"_s);
    EXPECT_EQ(lines(SpeechSubtitleAPI::merge({{1, 120'000, 130'000, u"end"_s}}, pieces[1], 600'000)),
              u"599000-600000 end"_s);
}

TEST(SpeechSubtitleAPI, an_answer_is_read_or_refused_by_its_shape)
{
    struct Row
    {
        const char *json;
        bool words;
        QString result; ///< Cues, or the sentence of a refusal.
    };
    const Row rows[] = {
        {R"({"segments":[{"start":0,"end":1.2345,"text":" Hi "},{"start":1.5,"end":2,"text":"you"}]})", false,
         u"0-1235 Hi|1500-2000 you"_s},
        {R"({"segments":[{"start":0,"end":1,"text":" "},{"start":1,"end":1,"text":"x"},{"start":1,"end":2,"text":"y"}]})",
         false, u"1000-2000 y"_s},
        {R"({"words":[{"start":0,"end":0.4,"word":"Hello"},{"start":0.4,"end":0.8,"word":"world"}]})", false,
         u"0-800 Hello world"_s},
        {R"({"segments":[{"start":0,"end":9,"text":"s"}],"words":[{"start":0,"end":1,"word":"w"}]})", true,
         u"0-1000 w"_s},
        {R"({"segments":[{"start":0,"end":9,"text":"s"}],"words":[{"start":0,"end":1,"word":"w"}]})", false,
         u"0-9000 s"_s},
        {R"({"segments":[{"start":0,"end":9,"text":"s","words":[{"start":0,"end":1,"word":" he"},{"start":1,"end":2,"word":"llo"},{"start":2,"end":3,"word":" you"}]}]})",
         true, u"0-3000 hello you"_s},
        {R"({"segments":[{"start":0,"end":9,"text":"s"}]})", true, u"0-9000 s"_s},
        {R"({"text":"only text"})", false, QString::fromUtf16(untimed)},
        {R"({"other":1})", false, QString::fromUtf16(incompatible)},
        {R"({"segments":"x"})", false, QString::fromUtf16(incompatible)},
        {"plain text", false, QString::fromUtf16(incompatible)},
        {"[1]", false, QString::fromUtf16(incompatible)},
        {R"({"segments":[]})", false, QString::fromUtf16(silent)},
        {R"({"segments":[{"start":-0.1,"end":1,"text":"x"}]})", false, QString::fromUtf16(badTimes)},
        {R"({"segments":[{"start":0,"end":1e300,"text":"x"}]})", false, QString::fromUtf16(badTimes)},
        {R"({"segments":[{"start":2,"end":1,"text":"x"}]})", false, QString::fromUtf16(backwards)},
        {R"({"segments":[{"start":2,"end":3,"text":"x"},{"start":1,"end":2,"text":"y"}]})", false,
         QString::fromUtf16(backwards)},
        {R"({"segments":[{"start":2,"text":"x"}]})", false, QString::fromUtf16(backwards)},
        {R"({"segments":[{"start":2,"end":3}]})", false, QString::fromUtf16(backwards)},
        {R"({"segments":[{"start":"2","end":3,"text":"x"}]})", false, QString::fromUtf16(backwards)},
        {R"({"words":[{"start":0,"end":1}]})", true, QString::fromUtf16(backwards)},
    };
    for (const Row &row : rows) {
        QString result;
        const QString refused = refusal(
            [&] { result = lines(SpeechSubtitleAPI::parseResponse(row.json, row.words, NoSpeech::isRefused)); });
        EXPECT_EQ((refused + result).toStdString(), row.result.toStdString()) << row.json;
    }
    EXPECT_TRUE(SpeechSubtitleAPI::parseResponse(R"({"segments":[]})", false, NoSpeech::isAllowed).isEmpty());
}

TEST(SpokenWords, phrases_are_short_and_blanks_stand_where_writing_has_them)
{
    const auto at = [](qint64 start, qint64 end, const QString &text) { return SpokenWord{start, end, text}; };
    EXPECT_EQ(lines(SpokenWords::cues(
                  {at(0, 100, u"你"_s), at(100, 200, u"好"_s), at(200, 250, u"，"_s), at(300, 400, u"世界"_s)})),
              u"0-250 你好，|300-400 世界"_s);
    EXPECT_EQ(lines(SpokenWords::cues(
                  {at(0, 100, u"用"_s), at(100, 200, u"Final"_s), at(200, 300, u"Cut"_s), at(300, 400, u"剪"_s)})),
              u"0-400 用Final Cut剪"_s);
    EXPECT_EQ(lines(SpokenWords::cues({at(0, 100, u"Wait"_s), at(100, 100, u"!"_s), at(200, 300, u"No"_s)})),
              u"0-100 Wait!|200-300 No"_s);
    EXPECT_EQ(lines(SpokenWords::cues({at(0, 100, u"R"_s), at(100, 200, u"&"_s), at(200, 300, u"B"_s),
                                       at(300, 400, u"costs"_s), at(400, 500, u"$5"_s), at(500, 600, u"元"_s)})),
              u"0-600 R & B costs $5元"_s);
    EXPECT_EQ(lines(SpokenWords::cues({at(0, 100, u"a"_s), at(700, 800, u"b"_s), at(1'401, 1'500, u"c"_s)})),
              u"0-800 a b|1401-1500 c"_s);
    EXPECT_EQ(lines(SpokenWords::cues({at(0, 100, u"a"_s), at(600, 4'000, u"b"_s), at(4'000, 4'001, u"c"_s)})),
              u"0-4000 a b|4000-4001 c"_s);
    const QString twenty(20, u'字');
    EXPECT_EQ(SpokenWords::cues({at(0, 1, twenty), at(1, 2, twenty), at(2, 3, u"二字"_s)}).size(), 1);
    EXPECT_EQ(SpokenWords::cues({at(0, 1, twenty), at(1, 2, twenty), at(2, 3, u"三个字"_s)}).size(), 2);
}

TEST(SpeechSubtitleAPI, the_form_is_what_services_read)
{
    const QTemporaryDir folder;
    const QString audio = folder.filePath(u"a.wav"_s);
    QFile wav(audio);
    ASSERT_TRUE(wav.open(QIODevice::WriteOnly));
    const QByteArray sound(600'000, 'w');
    wav.write(sound);
    wav.close();
    const SpeechAPIConfiguration configuration{
        .baseURL = {}, .model = u" whisper-1 "_s, .apiKey = u"secret"_s, .wordTimestamps = true};
    const QString body = folder.filePath(u"body"_s);
    const QByteArray b =
        SpeechSubtitleAPI::writeMultipart(audio, body, configuration, SubtitleAI::SpeechLanguage::chinese);
    QFile written(body);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const auto field = [&](const QByteArray &name, const QByteArray &value) {
        return "--" + b + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
    };
    EXPECT_TRUE(written.readAll() == field("model", "whisper-1") + field("response_format", "verbose_json") +
                                         field("timestamp_granularities[]", "word") + field("language", "zh") + "--" +
                                         b +
                                         "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
                                         "Content-Type: audio/wav\r\n\r\n" +
                                         sound + "\r\n--" + b + "--\r\n");
    EXPECT_EQ(
        SpeechSubtitleAPI::fields({.baseURL = {}, .model = u"m"_s, .apiKey = {}}, SubtitleAI::SpeechLanguage::automatic)
            .size(),
        3);
    EXPECT_EQ(refusal([] {
                  SpeechSubtitleAPI::fields({.baseURL = {}, .model = u"a\nb"_s, .apiKey = {}},
                                            SubtitleAI::SpeechLanguage::automatic);
              }),
              u"模型名称不能包含换行。"_s);
    EXPECT_EQ(SpeechSubtitleAPI::requestError(413).message(),
              u"音频转写失败（HTTP 413）服务商音频上传上限更小，请缩短素材。原字幕已保留。"_s);
}

TEST(SubtitleGeneration, a_review_that_fails_costs_nothing_but_itself)
{
    const QList<Subtitle> cues = {{1, 0, 900, u"嗨"_s}};
    const auto finish = [&](const std::function<QList<Subtitle>(const QList<Subtitle> &)> &review) {
        return SubtitleGeneration::finish(cues, review);
    };
    EXPECT_EQ(finish({}).cues, cues);
    EXPECT_FALSE(finish({}).unreviewed);
    const GeneratedSubtitles reviewed = finish([](QList<Subtitle> rows) {
        rows[0].text = u"Hi"_s;
        return rows;
    });
    EXPECT_EQ(reviewed.cues.first().text, u"Hi"_s);
    EXPECT_EQ(reviewed.unreviewed, cues);
    const GeneratedSubtitles failed =
        finish([](const QList<Subtitle> &) -> QList<Subtitle> { throw PlatformError(u"net"_s); });
    EXPECT_EQ(failed.cues, cues);
    ASSERT_TRUE(failed.notice);
    EXPECT_EQ(failed.notice->sentence, u"字幕已生成；自动校对未完成，已保留识别原稿。"_s);
    EXPECT_EQ(refusal([&] {
                  finish([](QList<Subtitle> rows) {
                      ++rows[0].end;
                      return rows;
                  });
              }),
              u"校对结果改变了字幕时间。"_s);
    EXPECT_THROW(finish([](const QList<Subtitle> &) -> QList<Subtitle> { throw Cancelled(); }), Cancelled);
}
