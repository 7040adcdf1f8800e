#pragma once

#include "core/Check.h"
#include "core/timing/ComparisonKeys.h"

#include <span>
#include <vector>

/// Finds where the units of a script were heard.
///
/// Rare passages that both have are anchors (SequenceAlignment); between them the best alignment is worked out whole.
/// Skipping costs the more the oftener it begins, so that a passage left out, improvised or moved stays one gap, and a
/// single like character in the middle of one pairs with nothing.
namespace UnitAlignment {

enum class Likeness : quint8
{
    none,     ///< Not heard.
    replaced, ///< Something else was heard in its place.
    sound,    ///< Another character that is read alike.
    same
};

struct Partner
{
    qint32 heard = -1; ///< Index of a heard unit, ascending over the script; -1 with none.
    Likeness likeness = Likeness::none;

    bool isHeard() const { return likeness >= Likeness::sound; }
};

/// A stretch without anchors whose table would have more cells, a byte each, stays unpaired.
constexpr size_t mostCells = 4'000'000;

/// The partner of each of `script`'s units. Of a passage that was spoken twice the later one pairs: a speaker starts
/// again to say it better. Sequences are shorter than 2^31.
std::vector<Partner> align(std::span<const ComparisonKeys::Unit> script, std::span<const ComparisonKeys::Unit> heard,
                           ComparisonKeys &keys, const Check &check);

} // namespace UnitAlignment
