#include "ai/speech/SpeechSubtitleAPI.h"

#include "ai/ServiceMessage.h"
#include "ai/speech/SpokenWords.h"
#include "core/PlatformError.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace SpeechSubtitleAPI {

namespace {

/// Whole milliseconds of a field in seconds.
qint64 milliseconds(const QJsonObject &object, const QString &field)
{
    constexpr double perSecond = 1'000;
    constexpr double longest = 1e9; // seconds; far beyond any recording
    const QJsonValue value = object.value(field);
    if (!value.isDouble())
        throw ConversionError(u"音频接口返回了倒序或不完整的字幕，原字幕已保留。"_s);
    const double seconds = value.toDouble();
    if (!std::isfinite(seconds) || seconds < 0 || seconds > longest)
        throw ConversionError(u"音频接口返回了无效时间戳，原字幕已保留。"_s);
    return std::llround(seconds * perSecond);
}

/// The elements of `array`, whose text is called `textField`, in order.
QList<SpokenWord> read(const QJsonArray &array, const QString &textField)
{
    QList<SpokenWord> result;
    for (const auto &element : array) {
        const QJsonObject object = element.toObject();
        const SpokenWord word{.startMS = milliseconds(object, u"start"_s),
                              .endMS = milliseconds(object, u"end"_s),
                              .text = object.value(textField).toString()};
        const bool goesBack = word.endMS < word.startMS || (!result.isEmpty() && word.startMS < result.last().startMS);
        if (goesBack || !object.value(textField).isString())
            throw ConversionError(u"音频接口返回了倒序或不完整的字幕，原字幕已保留。"_s);
        result.append(word);
    }
    return result;
}

/// The words of an answer, which stand beside the segments or inside them.
QJsonArray words(const QJsonObject &answer)
{
    if (answer.value(u"words").isArray())
        return answer.value(u"words").toArray();
    QJsonArray result;
    const QJsonArray segments = answer.value(u"segments").toArray();
    for (const auto &segment : segments) {
        const QJsonArray inside = segment.toObject().value(u"words").toArray();
        for (const auto &word : inside)
            result.append(word);
    }
    return result;
}

QList<Subtitle> cuesOfSegments(const QJsonArray &segments)
{
    QList<Subtitle> result;
    for (const SpokenWord &segment : read(segments, u"text"_s)) {
        const QString text = segment.text.trimmed();
        if (!text.isEmpty() && segment.startMS < segment.endMS)
            result.append({.id = result.size() + 1, .start = segment.startMS, .end = segment.endMS, .text = text});
    }
    return result;
}

/// Two times together. One that does not fit is no time of a recording but a fault of the program.
qint64 sum(qint64 a, qint64 b)
{
    qint64 result = 0;
    if (__builtin_add_overflow(a, b, &result))
        qFatal("a time is beyond 64 bits");
    return result;
}

QByteArray quoted(const QString &text)
{
    // As browsers write names in forms.
    return '"' + text.toUtf8().replace('"', "%22") + '"';
}

} // namespace

QList<SpeechChunk> chunks(qint64 durationMS, qint64 coreMS, qint64 overlapMS)
{
    QList<SpeechChunk> result;
    if (durationMS < 1 || coreMS < 1 || overlapMS < 0)
        return result;
    for (qint64 start = 0, end = 0; end < durationMS; start = end) {
        end = std::min(sum(start, coreMS), durationMS);
        result.append({.startMS = std::max(start - overlapMS, qint64(0)),
                       .endMS = std::min(sum(end, overlapMS), durationMS),
                       .coreStartMS = start,
                       .coreEndMS = end});
    }
    return result;
}

QList<std::pair<QString, QString>> fields(const SpeechAPIConfiguration &configuration,
                                          SubtitleAI::SpeechLanguage language)
{
    const QString model = configuration.model.trimmed();
    if (model.contains(u'\n') || model.contains(u'\r'))
        throw ConversionError(u"模型名称不能包含换行。"_s);
    QList<std::pair<QString, QString>> result = {
        {u"model"_s, model},
        {u"response_format"_s, u"verbose_json"_s},
        {u"timestamp_granularities[]"_s, configuration.wordTimestamps ? u"word"_s : u"segment"_s}};
    if (language != SubtitleAI::SpeechLanguage::automatic)
        result.append({u"language"_s, SubtitleAI::code(language)});
    return result;
}

QByteArray writeMultipart(const QString &audio, const QString &body, const SpeechAPIConfiguration &configuration,
                          SubtitleAI::SpeechLanguage language)
{
    QByteArray boundary = "lintora-" + QUuid::createUuid().toByteArray(QUuid::Id128);
    const auto parts = fields(configuration, language);
    QFile source(audio);
    QFile target(body);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw PlatformError(source.errorString());
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw PlatformError(target.errorString());
    const auto write = [&](const QByteArray &bytes) {
        if (target.write(bytes) != bytes.size())
            throw PlatformError(target.errorString());
    };
    for (const auto &[name, value] : parts)
        write("--" + boundary + "\r\nContent-Disposition: form-data; name=" + quoted(name) + "\r\n\r\n" +
              value.toUtf8() + "\r\n");
    write(
        "--" + boundary +
        "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\nContent-Type: audio/wav\r\n\r\n");
    constexpr qint64 blockSize = 256 * 1024; // bytes
    for (QByteArray block = source.read(blockSize); !block.isEmpty(); block = source.read(blockSize))
        write(block);
    if (source.error() != QFileDevice::NoError)
        throw PlatformError(source.errorString());
    write("\r\n--" + boundary + "--\r\n");
    return boundary;
}

QList<Subtitle> parseResponse(QByteArrayView data, bool wantsWords, SubtitleAI::NoSpeech noSpeech)
{
    const QJsonObject answer = QJsonDocument::fromJson(data.toByteArray()).object();
    const bool hasSegments = answer.value(u"segments").isArray();
    const QJsonArray spoken = words(answer);
    if (!hasSegments && !answer.value(u"words").isArray()) {
        if (answer.value(u"text").isString())
            throw ConversionError(u"此接口没有返回字幕时间戳。仅返回 text "
                                  "的聊天/转写模型不能直接生成带时间字幕；请使用支持 segments 或 words 的模型。"_s);
        throw ConversionError(u"音频接口返回格式不兼容。需要含 segments 或 words 时间戳的 verbose_json。"_s);
    }
    const bool usesWords = !spoken.isEmpty() && (wantsWords || !hasSegments);
    QList<Subtitle> cues =
        usesWords ? SpokenWords::cues(read(spoken, u"word"_s)) : cuesOfSegments(answer.value(u"segments").toArray());
    if (cues.isEmpty() && noSpeech == SubtitleAI::NoSpeech::isRefused)
        throw ConversionError(u"音频接口未返回有效语音，请检查音轨与语言。"_s);
    return cues;
}

QList<Subtitle> parseWords(QByteArrayView data)
{
    const QJsonObject answer = QJsonDocument::fromJson(data.toByteArray()).object();
    const QJsonArray spoken = words(answer);
    const bool hasSegments = answer.value(u"segments").isArray() && !answer.value(u"segments").toArray().isEmpty();
    if (spoken.isEmpty() && (hasSegments || !answer.value(u"text").toString().trimmed().isEmpty()))
        throw ConversionError(u"此接口没有返回词语时间，无法为文稿定时。请使用支持 words 的模型。"_s);
    QList<Subtitle> result;
    for (const SpokenWord &word : read(spoken, u"word"_s))
        result.append({.id = result.size() + 1,
                       .start = word.startMS,
                       .end = std::max(word.endMS, word.startMS + 1),
                       .text = word.text});
    return result;
}

QList<Subtitle> merge(const QList<Subtitle> &cues, const SpeechChunk &chunk, qint64 durationMS)
{
    QList<Subtitle> result;
    for (Subtitle cue : cues) {
        cue.start += chunk.startMS;
        cue.end = std::min(cue.end + chunk.startMS, durationMS);
        const qint64 midpoint = cue.start + (cue.end - cue.start) / 2;
        if (cue.start < cue.end && chunk.coreStartMS <= midpoint && midpoint < chunk.coreEndMS)
            result.append(cue);
    }
    return result;
}

ConversionError requestError(int status, const QString &detail)
{
    static constexpr ServiceMessage::Hint hints[] = {{401, u"请检查音频接口密钥。"},
                                                     {403, u"请检查语音模型权限。"},
                                                     {404, u"地址需支持 /audio/transcriptions，且模型需已开通。"},
                                                     {413, u"服务商音频上传上限更小，请缩短素材。"},
                                                     {429, u"请求被限流或额度不足。"},
                                                     {0, u"服务商未能完成转写，请检查音频接口配置。"}};
    return ConversionError(ServiceMessage::refusal(u"音频转写失败"_s, status, hints) + u"原字幕已保留。"_s, detail);
}

} // namespace SpeechSubtitleAPI
