#pragma once

#include "ai/AnsweredCues.h"
#include "ai/speech/SpeechSubtitleAPI.h"
#include "core/Progress.h"

class LocalAIJob;

namespace SpeechSubtitleAPI {

/// The service's answer to the WAV file `audio`, which is sent by way of the file `body`. Its progress is that of this
/// one request. @throws as transcribe does
QByteArray ask(const QString &audio, const QString &body, SubtitleAI::SpeechLanguage language,
               const SpeechAPIConfiguration &configuration, LocalAIJob &job, const ProgressReport &progress);

/// The cues of what is said in the first audio stream of `media`, by a transcription service.
///
/// The recording goes there in pieces, one after another; no more than one piece and its upload lie on the disk at a
/// time beside the whole track. What was answered is kept in `keptFolder` until it is told to be
/// forgotten: the next run of the same work pays only for the rest.
/// @throws ConversionError; PlatformError in the network's own words, Cancelled
AnsweredCues transcribe(const QString &media, SubtitleAI::SpeechLanguage language,
                        const SpeechAPIConfiguration &configuration, const QString &keptFolder, LocalAIJob &job,
                        SubtitleAI::NoSpeech noSpeech, const ProgressReport &progress,
                        const SubtitleAI::TrackReady &trackReady = {});

/// The same for single words, each a cue of its own with the blanks that the service gave it; none where nobody speaks.
/// @throws ConversionError also when the service tells no times of words
AnsweredCues transcribeWords(const QString &media, SubtitleAI::SpeechLanguage language,
                             SpeechAPIConfiguration configuration, const QString &keptFolder, LocalAIJob &job,
                             const ProgressReport &progress);

} // namespace SpeechSubtitleAPI
