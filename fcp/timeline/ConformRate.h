#pragma once

#include "fcp/Rational.h"

#include <libxml/tree.h>

#include <optional>

/// How fast a clip's own time runs against the timeline's where its source has another frame rate.
namespace ConformRate {

/// The pace k of `clip` on a timeline whose frames last `frameDuration` seconds: clip time = start + (timeline time −
/// offset) × k. 1 where the clip has no "conform-rate", where scaling is switched off, or where the source's rate is
/// not told.
///
/// 24, 25 and 23.98 are conformed to each other frame by frame; elsewhere only the NTSC factor 1.001 is.
Rational pace(const xmlNode *clip, const Rational &frameDuration);

/// The two halves of the above, for readers that meet a clip on several timelines: the source's rate in frames per
/// second that a "conform-rate" element tells, absent where the pace is 1 on every timeline, and the pace of such a
/// source.
std::optional<Rational> sourceRate(const xmlNode *conformRate);
Rational pace(const Rational &sourceRate, const Rational &frameDuration);

} // namespace ConformRate
