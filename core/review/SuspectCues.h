#pragma once

#include "core/Subtitle.h"

#include <QFlags>

#include <functional>

/// A cue that a person has to look at: likely invented by the recogniser, or placed by guessing.
struct SuspectCue
{
    enum class Reason
    {
        silence = 1,       ///< Nothing sounds where it is said to be spoken.
        repetition = 2,    ///< A phrase said over and over.
        closingPhrase = 4, ///< What recognisers put under music and noise: thanks for watching, who made the subtitles.
        speed = 8,         ///< Nobody speaks that fast.
        times = 16         ///< The text is the person's own; where it was said was not heard well enough.
    };
    Q_DECLARE_FLAGS(Reasons, Reason)

    qsizetype index = 0; ///< Position in the list of cues.
    Reasons reasons;     ///< At least one.

    friend bool operator==(const SuspectCue &, const SuspectCue &) = default;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(SuspectCue::Reasons)
Q_DECLARE_TYPEINFO(SuspectCue, Q_RELOCATABLE_TYPE);

/// Finds what a recogniser has likely made up, which its own cues tell. Marks only: each of them may be true.
namespace SuspectCues {

/// Whether nothing is heard between two times, in milliseconds, of what was recognised.
using IsSilent = std::function<bool(qint64 startMS, qint64 endMS)>;

/// The suspects among `items`, in order. Without `isSilent` the sound is not judged.
QList<SuspectCue> find(const QList<Subtitle> &items, const IsSilent &isSilent);

/// The reasons in the words that a person reads, joined by "；".
QString reason(SuspectCue::Reasons reasons);

/// The same as a sentence about the cue, without a full stop.
QString sentence(SuspectCue::Reasons reasons);

} // namespace SuspectCues
