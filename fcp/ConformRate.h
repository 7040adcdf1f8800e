#pragma once

#include "fcp/Rational.h"

#include <libxml/tree.h>

/// How fast a clip's own time runs against the timeline's where its source has another frame rate.
namespace ConformRate {

/// The pace k of `clip` on a timeline whose frames last `frameDuration` seconds: clip time = start + (timeline time −
/// offset) × k. 1 where the clip has no "conform-rate", where scaling is switched off, or where the source's rate is
/// not told.
///
/// 24, 25 and 23.98 are conformed to each other frame by frame; elsewhere only the NTSC factor 1.001 is.
Rational pace(const xmlNode *clip, const Rational &frameDuration);

} // namespace ConformRate
