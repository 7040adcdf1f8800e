#include "ai/speech/Transcript.h"

#include "ai/speech/RecognitionProgress.h"
#include "ai/speech/WavFile.h"
#include "core/ConversionError.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using SubtitleAI::NoSpeech;

namespace {

QByteArray segment(qint64 from, qint64 to, const QByteArray &text)
{
    return R"({"timestamps":{"from":"x"},"offsets":{"from":)" + QByteArray::number(from) + R"(,"to":)" +
           QByteArray::number(to) + R"(},"text":")" + text + R"("})";
}

QByteArray transcript(const QByteArrayList &segments)
{
    return R"({"systeminfo":"…","transcription":[)" + segments.join(',') + "]}";
}

/// The cues as text, or the message of the refusal.
QString parsed(const QByteArray &data, NoSpeech noSpeech = NoSpeech::isRefused, std::optional<qint64> end = {})
{
    try {
        QString text;
        for (const Subtitle &cue : SubtitleAI::parseTranscript(data, noSpeech, end))
            text += u"%1 %2-%3 %4\n"_s.arg(cue.id).arg(cue.start).arg(cue.end).arg(cue.text);
        return text;
    } catch (const ConversionError &error) {
        return error.message();
    }
}

QByteArray number(quint32 value, int size)
{
    return {reinterpret_cast<const char *>(&value), size};
}

QByteArray chunk(const QByteArray &name, const QByteArray &content, std::optional<quint32> size = {})
{
    return name + number(size.value_or(quint32(content.size())), 4) + content;
}

/// 16 kHz, mono, 16 bits.
const QByteArray format =
    chunk("fmt ", number(1, 2) + number(1, 2) + number(16'000, 4) + number(32'000, 4) + number(2, 2) + number(16, 2));

std::optional<qint64> durationOf(const QByteArray &bytes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.wav"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return -1;
    file.close();
    return WavFile::durationMS(file.fileName());
}

} // namespace

TEST(Transcript, segments_become_cues_numbered_by_their_place)
{
    const QByteArray data =
        transcript({segment(0, 1'500, " Hello, world. "), segment(1'500, 2'000, " \\n "), segment(-1, 5, "x"),
                    segment(2'000, 2'000, "y"), segment(2'500, 9'000, "你好")});
    EXPECT_EQ(parsed(data), u"1 0-1500 Hello, world.\n5 2500-9000 你好\n"_s);
    EXPECT_EQ(parsed(data, NoSpeech::isRefused, 4'000), u"1 0-1500 Hello, world.\n5 2500-4000 你好\n"_s);
    // What begins where the sound has ended is nothing.
    EXPECT_EQ(parsed(data, NoSpeech::isRefused, 2'500), u"1 0-1500 Hello, world.\n"_s);
}

TEST(Transcript, half_a_character_does_not_cost_the_whole)
{
    EXPECT_EQ(parsed(transcript({segment(0, 10, "\xE4\xBD"), segment(10, 20, "ok")})),
              u"1 0-10 \uFFFD\uFFFD\n2 10-20 ok\n"_s);
}

TEST(Transcript, refusals)
{
    const QString unreadable = u"语音引擎返回了无法读取的结果。"_s;
    for (const QByteArray &data :
         {QByteArray(), QByteArray("{}"), QByteArray("[]"), QByteArray(R"({"transcription":{}})"),
          QByteArray(R"({"transcription":[{"text":"x"}]})"),
          QByteArray(R"({"transcription":[{"offsets":{"from":0,"to":1}}]})"), transcript({segment(0, 1, "x")}) + "x",
          transcript({segment(0, 1, "x")}).chopped(1)})
        EXPECT_EQ(parsed(data), unreadable) << data.toStdString();
    EXPECT_EQ(parsed(transcript({segment(0, 1, "x")}), NoSpeech::isRefused, 0), u"音轨时长无效，请重新导入。"_s);
    EXPECT_EQ(parsed(transcript({})), u"未识别到有效语音。请确认素材有人声并选择正确语言。"_s);
    EXPECT_EQ(parsed(transcript({}), NoSpeech::isAllowed), QString());
}

TEST(Transcript, the_engines_are_called_with_exactly_these_arguments)
{
    EXPECT_EQ(SubtitleAI::extractionArguments(u"/a b.mov"_s, u"/w/audio.wav"_s).join(u' '),
              u"-nostdin -hide_banner -loglevel error -i /a b.mov -map 0:a:0 -vn -ar 16000 -ac 1 -c:a pcm_s16le -y "
              "/w/audio.wav"_s);
    EXPECT_EQ(
        SubtitleAI::speechArguments(u"/m"_s, u"/w/audio.wav"_s, u"/w/result"_s, SubtitleAI::SpeechLanguage::chinese)
            .join(u' '),
        u"-m /m -f /w/audio.wav -l zh -t 4 -oj -of /w/result -ml 56 -sow -np"_s);
    EXPECT_EQ(SubtitleAI::code(SubtitleAI::SpeechLanguage::automatic), u"auto"_s);
    EXPECT_EQ(SubtitleAI::code(SubtitleAI::SpeechLanguage::english), u"en"_s);
}

TEST(WavFile, its_duration_is_that_of_the_samples_that_are_there)
{
    const QByteArray second(32'000, '\0');
    EXPECT_EQ(durationOf("RIFF....WAVE" + format + chunk("data", second)), 1'000);
    // Chunks of an odd size are padded; others may come before the samples.
    EXPECT_EQ(durationOf("RIFF....WAVE" + format + chunk("LIST", "abc") + '\0' + chunk("data", second)), 1'000);
    EXPECT_EQ(durationOf("RIFF....WAVE" + format + chunk("data", second.first(16'016), 0xFFFF'FFFF)), 501);
    EXPECT_EQ(durationOf("RIFF....WAVE" + format + chunk("data", "")), 0);
    EXPECT_EQ(durationOf("RIFF....WAVE" + format), std::nullopt);
    EXPECT_EQ(durationOf("RIFF....WAVE" + chunk("data", second)), std::nullopt);
    EXPECT_EQ(durationOf("RIFX....WAVE" + format + chunk("data", second)), std::nullopt);
    EXPECT_EQ(durationOf("RIFF....WAVE" + format.chopped(2)), std::nullopt);
    EXPECT_EQ(WavFile::durationMS(u"/nowhere"_s), std::nullopt);
}

TEST(RecognitionProgress, the_share_follows_the_printed_segments_and_the_time_left_is_told_when_it_is_known)
{
    RecognitionProgress progress(u"…"_s, 100'000);
    EXPECT_EQ(progress.hear("\n[00:00:00.000 --> 00:00:04.000]  Hi\n[00:00:04.0", 10'000),
              (Progress{.what = u"…"_s, .share = 0.04}));
    EXPECT_EQ(progress.hear("00 --> 00:00:20.000]  [x --> y]\nnoise\n[1 --> 2]\n", 10'000),
              (Progress{.what = u"…"_s, .share = 0.2, .leftMS = 40'000}));
    EXPECT_EQ(progress.hear("[00:01:00.000 --> 01:00:00.000]  a\n", 2'000), (Progress{.what = u"…"_s, .share = 1.0}));
}
