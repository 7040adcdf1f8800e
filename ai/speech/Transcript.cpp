#include "ai/speech/Transcript.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/Utf8.h"
#include "core/json/JsonReader.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SubtitleAI {

namespace {

struct Segment
{
    qint64 from = 0;
    qint64 to = 0;
    QString text;
};

Segment readSegment(JsonReader &json)
{
    Segment segment;
    json.readObject({"offsets", "text"}, [&](QByteArrayView key) {
        if (key == "offsets")
            json.readObject({"from", "to"}, [&](QByteArrayView place) {
                if (place == "from")
                    segment.from = json.readInteger();
                else if (place == "to")
                    segment.to = json.readInteger();
            });
        else if (key == "text")
            segment.text = json.readText();
    });
    return segment;
}

/// Every element becomes a cue with the number of its place.
QList<Subtitle> readCues(QByteArrayView document)
{
    QList<Subtitle> cues;
    JsonReader json(document);
    json.readObject({"transcription"}, [&](QByteArrayView key) {
        if (key != "transcription")
            return;
        json.readArray([&] {
            const Segment segment = readSegment(json);
            cues.append(
                {.id = cues.size() + 1, .start = segment.from, .end = segment.to, .text = segment.text.trimmed()});
        });
    });
    json.finish();
    return cues;
}

} // namespace

QString title(SpeechLanguage language)
{
    switch (language) {
    case SpeechLanguage::automatic:
        return u"自动识别"_s;
    case SpeechLanguage::chinese:
        return u"中文"_s;
    case SpeechLanguage::english:
        return u"English"_s;
    }
    Q_UNREACHABLE();
}

QString code(SpeechLanguage language)
{
    switch (language) {
    case SpeechLanguage::automatic:
        return u"auto"_s;
    case SpeechLanguage::chinese:
        return u"zh"_s;
    case SpeechLanguage::english:
        return u"en"_s;
    }
    Q_UNREACHABLE();
}

QStringList extractionArguments(const QString &media, const QString &wav)
{
    return {u"-nostdin"_s, u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-i"_s,    media,
            u"-map"_s,     u"0:a:0"_s,        u"-vn"_s,       u"-ar"_s,   u"16000"_s, u"-ac"_s,
            u"1"_s,        u"-c:a"_s,         u"pcm_s16le"_s, u"-y"_s,    wav};
}

QStringList speechArguments(const QString &model, const QString &pcm, const QString &result, SpeechLanguage language)
{
    return {u"-m"_s,  model,    u"-f"_s, pcm,      u"-l"_s, code(language), u"-t"_s, u"4"_s,
            u"-oj"_s, u"-of"_s, result,  u"-ml"_s, u"56"_s, u"-sow"_s,      u"-np"_s};
}

QList<Subtitle> parseTranscript(QByteArrayView data, NoSpeech noSpeech, std::optional<qint64> maximumEndMS)
{
    if (maximumEndMS && *maximumEndMS <= 0)
        throw ConversionError(u"音轨时长无效，请重新导入。"_s);
    // A character may be cut in two where a segment ends: what is left of it must not cost the whole transcript.
    const bool isWhole = Utf8::survey(data).valid;
    const QByteArray mended = isWhole ? QByteArray() : QString::fromUtf8(data).toUtf8();
    QList<Subtitle> cues;
    try {
        cues = readCues(isWhole ? data : QByteArrayView(mended));
    } catch (const PlatformError &error) {
        throw ConversionError(u"语音引擎返回了无法读取的结果。"_s, error.description());
    }
    for (Subtitle &cue : cues)
        cue.end = std::min(cue.end, maximumEndMS.value_or(cue.end));
    cues.removeIf([](const Subtitle &cue) { return cue.text.isEmpty() || cue.start < 0 || cue.start >= cue.end; });
    if (cues.isEmpty() && noSpeech == NoSpeech::isRefused)
        throw ConversionError(u"未识别到有效语音。请确认素材有人声并选择正确语言。"_s);
    return cues;
}

} // namespace SubtitleAI
