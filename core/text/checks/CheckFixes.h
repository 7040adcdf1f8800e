#pragma once

#include "core/text/checks/CheckedCues.h"

#include <functional>
#include <set>

/// The fixes that need no judgement: a gap is closed, a cue extended into the gap behind it, moved to the frames, an
/// overlap cut off; texts are trimmed, cleaned and unified.
namespace CheckFixes {

/// The cue as it is after `finding` is fixed; of a doubled cue, which then goes, the one before. Absent where a person
/// must decide: no text, no legible time would be left, or another limit be broken.
std::optional<Subtitle> mended(const CheckFinding &finding, const CheckedCues &cues, const CheckLimits &limits,
                               FrameGrid grid);

bool isFixable(const CheckFinding &finding, const CheckedCues &cues, const CheckLimits &limits, FrameGrid grid);

/// Which findings are to be fixed, by position in the list and rule.
using Chosen = std::function<bool(qsizetype cue, CheckRule rule)>;

/// The cues with everything of `rules` fixed that is chosen and can be, text before times. Fixed again they stay as
/// they are. Ids stay; `check` is called every few milliseconds, and what it throws passes through.
QList<Subtitle> fixed(const QList<Subtitle> &items, const std::set<CheckRule> &rules, const Chosen &chosen,
                      const CheckLimits &limits, FrameGrid grid, const std::function<void()> &check);

} // namespace CheckFixes
