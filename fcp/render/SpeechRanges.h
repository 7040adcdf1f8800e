#pragma once

#include <QList>

class RenderedSound;
class Job;

/// One part of a recording that is recognised by itself. Milliseconds of the recording.
///
/// ```
///   begin - overlap |-- heard ----------------------| end + overlap
///                        |-- begin ...... end --|
/// ```
struct SpeechRange
{
    qint64 begin = 0;      ///< A phrase whose middle lies in [begin, end) is this range's ...
    qint64 end = 0;        ///< ... above begin.
    qint64 heardBegin = 0; ///< What the recogniser hears: some more at a border to the next range ...
    qint64 heardEnd = 0;   ///< ... so that a phrase across it is heard whole.

    friend bool operator==(const SpeechRange &, const SpeechRange &) = default;
};

/// How a recording is divided.
namespace SpeechRanges {

/// Peaks of a recording, one for each frame of some milliseconds; the last one may be of less.
using Peaks = QList<quint16>;
constexpr qint64 frameMS = 50;

constexpr qint64 longSilenceMS = 60'000; ///< Silence from this length on is not recognised.
constexpr qint64 marginMS = 1'000;       ///< Of it, so much is heard before and after what sounds.
constexpr quint16 silence = 16;          ///< Peaks up to this one, 66 dB below full scale, are silence.
constexpr qint64 longestMS = 600'000;    ///< How long a range is about, when what sounds is longer.
constexpr qint64 searchMS = 60'000;      ///< How far from there a border is looked for, both ways.
constexpr qint64 restMS = 500;           ///< A border lies in the middle of the quietest stretch of this length.
constexpr qint64 overlapMS = 5'000;      ///< So much is heard on the other side of such a border.

/// The peaks of each `ofMS` milliseconds, 1 or more. @throws PlatformError, Cancelled
Peaks peaks(RenderedSound &sound, const Job &job, qint64 ofMS = frameMS);

/// Divides a recording of `durationMS` whose frames of frameMS have these peaks: what sounds, without long silences, in
/// ranges of about longestMS whose borders lie where it is quietest. In order; empty when nothing sounds.
QList<SpeechRange> divide(const Peaks &peaks, qint64 durationMS);

} // namespace SpeechRanges
