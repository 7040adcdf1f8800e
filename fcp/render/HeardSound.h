#pragma once

#include "core/HeardWord.h"
#include "core/Progress.h"
#include "fcp/audio/FCPAudioPlan.h"

#include <QList>

#include <functional>
#include <variant>

class LocalAIJob;
class Workspace;

/// What was heard of a recording, word by word, and how loud it is.
struct HeardSound
{
    QList<HeardWord> words; ///< In the order of their times.
    QList<quint16> peaks;   ///< One for each SpeechBorders::frameMS.

    /// Who listens to a WAV file of 16 kHz, mono, 16 bits, `durationMS` long. `workspace` is for whatever it needs.
    using Listen = std::function<QList<HeardWord>(const QString &wav, qint64 durationMS, const Workspace &workspace,
                                                  const ProgressReport &progress)>;

    /// Of the first audio stream of a file, by its path, or of a timeline. Nothing is left of its own files, however it
    /// ends.
    /// @throws ConversionError when there is no sound, a helper or `listen` fails; PlatformError, Cancelled
    static HeardSound of(const std::variant<QString, FCPAudioPlan> &source, LocalAIJob &job, const Listen &listen,
                         const ProgressReport &progress);
};
