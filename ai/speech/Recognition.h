#pragma once

#include "ai/EngineModel.h"
#include "ai/speech/Transcript.h"
#include "core/HeardWord.h"
#include "core/Progress.h"

class LocalAIJob;
class Workspace;
struct LocalModel;

namespace SubtitleAI {

/// A speech model of the catalog, for transcribe. @throws (its prepare) "请先下载所选语音模型。"
EngineModel speechEngine(const LocalModel &model);

/// Turns the first audio stream of `media`, audio or video, into `wav`: 16 kHz, mono, 16 bits.
/// @throws ConversionError when a helper is missing or cannot read it, its reason as the detail; PlatformError,
/// Cancelled
void extractAudio(const QString &media, const QString &wav, LocalAIJob &job, const Workspace &workspace);

/// The cues of what is said in a WAV file of that form, `durationMS` long.
/// @throws ConversionError as parseTranscript does, and when the result is missing, larger than 16 MiB or cannot be
/// made; PlatformError, Cancelled
QList<Subtitle> recognize(const QString &wav, qint64 durationMS, SpeechLanguage language, const QString &model,
                          LocalAIJob &job, NoSpeech noSpeech, const Workspace &workspace,
                          const ProgressReport &progress);

/// The words of what is said in a WAV file of that form, with their times; none where nobody speaks.
/// @throws ConversionError when the result cannot be read, is missing or larger than 256 MiB; PlatformError, Cancelled
QList<HeardWord> recognizeWords(const QString &wav, qint64 durationMS, SpeechLanguage language, const QString &model,
                                LocalAIJob &job, const Workspace &workspace, const ProgressReport &progress);

/// The cues of what is said in the first audio stream of `media`, on this machine alone.
///
/// Blocks as long as the engines take. Nothing is left of their processes and files, however it ends.
/// @throws ConversionError; PlatformError, Cancelled
QList<Subtitle> transcribe(const QString &media, SpeechLanguage language, const EngineModel &model, LocalAIJob &job,
                           NoSpeech noSpeech, const ProgressReport &progress, const TrackReady &trackReady = {});

} // namespace SubtitleAI
