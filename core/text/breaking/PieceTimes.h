#pragma once

#include "core/FrameGrid.h"
#include "core/HeardWord.h"
#include "core/Subtitle.h"

#include <optional>
#include <span>
#include <vector>

/// Shares a cue's time out among the pieces of its text.
namespace PieceTimes {

/// A piece of a text, in UTF-16 code units.
struct Piece
{
    qsizetype begin = 0;
    qsizetype end = 0;
};

/// Milliseconds, half-open.
struct Interval
{
    qint64 start = 0;
    qint64 end = 0;

    friend bool operator==(const Interval &, const Interval &) = default;
};

/// The times of `pieces`, which follow each other in the text of `cue`. The first starts and the last ends with the
/// cue; what lies between is on `grid`, ascending, at least a frame long, and does not overlap.
///
/// A piece begins when its first word in `words` does and ends with its last; up to two frames of silence between
/// pieces are closed. Words are found in the text in order, those that differ from it are passed over. Where there are
/// none, time goes by displayed width.
///
/// A cue of fewer frames than pieces is shared out in milliseconds; absent when it has fewer of those, too.
std::optional<std::vector<Interval>> shared(const Subtitle &cue, std::span<const Piece> pieces,
                                            std::span<const HeardWord> words, FrameGrid grid);

/// Those of `words`, a whole track's, whose middle lies within `cue`.
std::span<const HeardWord> within(std::span<const HeardWord> words, const Subtitle &cue);

} // namespace PieceTimes
