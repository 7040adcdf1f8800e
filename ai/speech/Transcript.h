#pragma once

#include "core/Subtitle.h"

#include <QByteArrayView>
#include <QStringList>

#include <functional>
#include <optional>

/// What the local recogniser is asked and what it answers, without running it.
namespace SubtitleAI {

enum class SpeechLanguage
{
    automatic,
    chinese,
    english,
};

QString title(SpeechLanguage language); ///< What the person reads: "自动识别", "中文", "English".
QString code(SpeechLanguage language);  ///< What the recogniser reads: "auto", "zh", "en".

/// The helper's arguments to turn the first audio stream of `media` into a WAV file of 16 kHz, mono.
QStringList extractionArguments(const QString &media, const QString &wav);

/// The recogniser's arguments: `model` and `pcm` are paths, `result` is one without the ".json" that it appends.
QStringList speechArguments(const QString &model, const QString &pcm, const QString &result, SpeechLanguage language);

/// Is handed the whole recording as a WAV file of 16 kHz, mono, 16 bits, before it is recognised. The file goes when
/// the recognition ends. What it throws ends the recognition. May be empty.
using TrackReady = std::function<void(const QString &wav)>;

/// Whether a recording without speech is an answer or a refusal.
enum class NoSpeech
{
    isRefused,
    isAllowed,
};

/// The cues of the recogniser's JSON, numbered by their place in it, from 1. Elements without text or without a time
/// of their own are left out. None ends after `maximumEndMS`.
/// @throws ConversionError when it cannot be read, with the reason as detail; when `maximumEndMS` is not positive; and
/// when nothing was said, unless that is allowed
QList<Subtitle> parseTranscript(QByteArrayView data, NoSpeech noSpeech, std::optional<qint64> maximumEndMS = {});

} // namespace SubtitleAI
