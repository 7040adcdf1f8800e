#pragma once

#include "ai/speech/Transcript.h"
#include "core/Progress.h"
#include "core/Subtitle.h"
#include "fcp/audio/FCPAudioPlan.h"

#include <functional>

class LocalAIJob;
class Workspace;

/// The sound of a planned timeline, at the timeline's times: as a file, and as what is said in it.
namespace FCPAudioRenderer {

/// Hears of a file that a helper is writing, on the thread that renders.
using Growing = std::function<void(const QString &wav)>;

/// Renders the plan's sound into a WAV file of 16 kHz, mono, 16 bits in `directory` and returns its path. It lasts
/// exactly as long as the plan does, to the sample. What else is written there is the caller's to remove too.
/// `growing` is called some times a second, and once it is complete, for each such file that is being written: of the
/// plan's pieces by their batches and, where there are several, of all at last. What is returned is the last one.
/// @throws ConversionError when a source file is missing, before any is read (MissingMedia::refuse); when a helper is
/// missing or fails, its reason as the detail; when nothing is heard. PlatformError, Cancelled
QString render(const FCPAudioPlan &plan, LocalAIJob &job, const QString &directory, const ProgressReport &progress,
               const Growing &growing = {});

/// Recognises a WAV file of that form: its cues, none where nobody speaks. `workspace` is for whatever it needs, and is
/// the same in every call.
using Recognizer = std::function<QList<Subtitle>(const QString &wav, qint64 durationMS, const Workspace &workspace,
                                                 const ProgressReport &progress)>;

/// The cues of what is said on the plan's timeline, at its times, numbered from 1.
///
/// Renders the sound and has it recognised range by range (SpeechRanges). The share that is told is that of the
/// recognition, which takes the time. Nothing is left of its files, however it ends.
/// `trackReady` is handed what was rendered.
/// @throws ConversionError as render and `recognize` do, and when nothing is said; PlatformError, Cancelled
QList<Subtitle> transcribe(const FCPAudioPlan &plan, LocalAIJob &job, const Recognizer &recognize,
                           const ProgressReport &progress, const SubtitleAI::TrackReady &trackReady = {});

} // namespace FCPAudioRenderer
