#pragma once

#include "core/HeardWord.h"
#include "core/Progress.h"
#include "core/timing/ScriptTiming.h"
#include "core/timing/SpeechBorders.h"
#include "fcp/render/SpeechTask.h"

#include <functional>

class LocalAIJob;

/// A recording as it was heard, word by word. Any number of scripts can be put onto it.
struct HeardSound
{
    QList<HeardWord> words;                    ///< In the order of their times.
    std::optional<SpeechBorders> borders = {}; ///< Absent where only the words are known.
    std::function<void()> forget = [] {};      ///< As AnsweredCues::forget, for all that was asked.

    /// Of the first audio stream of a file, or of a timeline. Blocks as long as it takes; nothing is left of processes
    /// and files, however it ends.
    /// @throws ConversionError when something is missing or wrong with the source or who listens; PlatformError,
    /// Cancelled
    static HeardSound of(const SpeechTask &task, LocalAIJob &job, const ProgressReport &progress);

    /// The cues of `script`, with the times of this sound. @throws as ScriptTiming::timed
    ScriptTimingResult timed(const QString &script, const ScriptTiming::Rules &rules, const Check &check) const;
};
