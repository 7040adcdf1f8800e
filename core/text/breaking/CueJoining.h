#pragma once

#include "core/Subtitle.h"

#include <functional>

/// Makes one cue of neighbours that flash by: the reverse of breaking long ones.
namespace CueJoining {

/// Two neighbours are joined when one of them is short, they are close, and what comes out fits.
struct Limits
{
    int columns = 16;         ///< Full-width columns of the joined line; half of that is short.
    qint64 briefMS = 1'000;   ///< A cue that lasts less is short, too.
    qint64 closeMS = 300;     ///< Between the end of one and the start of the next, at most.
    qint64 longestMS = 7'000; ///< Of the joined cue.
};

/// The cues with such neighbours joined, from the front; numbered from 1 when any were. Texts meet
/// as LineJoining has it. Cues of several lines and those that overlap stay as they are.
/// `check` is called every few milliseconds; what it throws passes through.
QList<Subtitle> joined(const QList<Subtitle> &items, const Limits &limits, const std::function<void()> &check);

} // namespace CueJoining
