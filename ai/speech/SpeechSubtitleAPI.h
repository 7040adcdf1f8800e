#pragma once

#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/speech/Transcript.h"
#include "core/ConversionError.h"
#include "core/Subtitle.h"

#include <QList>

#include <utility>

/// A piece of a long recording. Pieces overlap; each is responsible for its core alone. All in milliseconds.
struct SpeechChunk
{
    qint64 startMS = 0; ///< Of what is uploaded.
    qint64 endMS = 0;
    qint64 coreStartMS = 0;
    qint64 coreEndMS = 0;

    friend bool operator==(const SpeechChunk &, const SpeechChunk &) = default;
};

/// What a transcription service is asked and what it answers, without asking it.
namespace SpeechSubtitleAPI {

constexpr qint64 maximumUploadBytes = 25'165'824; ///< 24 MiB.
constexpr qint64 chunkCoreMS = 480'000;
constexpr qint64 chunkOverlapMS = 1'000;

/// The pieces of a recording of `durationMS`; none when the duration or the core is below 1 or the overlap negative.
/// Times beyond 64 bits end the program.
QList<SpeechChunk> chunks(qint64 durationMS, qint64 coreMS = chunkCoreMS, qint64 overlapMS = chunkOverlapMS);

/// The form's fields, in their order. @throws ConversionError "模型名称不能包含换行。"
QList<std::pair<QString, QString>> fields(const SpeechAPIConfiguration &configuration,
                                          SubtitleAI::SpeechLanguage language);

/// Writes the body of the upload of the WAV file `audio` to the file `body`, piece by piece, and returns the boundary
/// between its parts. @throws PlatformError, ConversionError as fields does
QByteArray writeMultipart(const QString &audio, const QString &body, const SpeechAPIConfiguration &configuration,
                          SubtitleAI::SpeechLanguage language);

/// The cues of an answer, from the start of its piece. Words are used where they were asked for and are there, or where
/// there is nothing else.
/// @throws ConversionError when it has no times, another shape, times that cannot be, or goes backwards; and when
/// nothing was said, unless that is allowed
QList<Subtitle> parseResponse(QByteArrayView data, bool wantsWords, SubtitleAI::NoSpeech noSpeech);

/// The words of an answer, a cue each, of at least a millisecond; none when nothing was said.
/// @throws ConversionError when it has no times of words, and as parseResponse does
QList<Subtitle> parseWords(QByteArrayView data);

/// The cues of `chunk` for which it is responsible, at their place in the whole recording of `durationMS`.
QList<Subtitle> merge(const QList<Subtitle> &cues, const SpeechChunk &chunk, qint64 durationMS);

/// What the person is told of an answer with another status than 200; `detail` is what the service itself says.
ConversionError requestError(int status, const QString &detail = {});

} // namespace SpeechSubtitleAPI
