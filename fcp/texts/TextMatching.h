#pragma once

#include "core/Subtitle.h"
#include "fcp/Rational.h"
#include "fcp/texts/TextOrigin.h"

#include <optional>
#include <vector>

/// Which cue belongs to which text of a project.
namespace TextMatching {

/// A text as it stands, in the order of time.
struct Standing
{
    Subtitle cue;
    qint64 number; ///< As TextOrigin::number.
};

/// For each of `cues` the index of its text in `standing`; no text belongs to two. First go those whose origin still
/// says what it said, then those that start on the same frame, then what stands between two of these, in order.
/// `frameDuration` is in seconds; without it times are compared as they are.
std::vector<std::optional<size_t>> match(const QList<Subtitle> &cues, const QList<TextOrigin> &origins,
                                         const std::vector<Standing> &standing,
                                         const std::optional<Rational> &frameDuration);

/// The frame nearest to a time in milliseconds; the time itself without a frame duration. @throws RationalOverflow
qint64 frame(qint64 milliseconds, const std::optional<Rational> &frameDuration);

} // namespace TextMatching
