#pragma once

#include "core/text/CommonSubsequence.h"

#include <functional>
#include <span>
#include <vector>

/// Pairs up what two long sequences of keys have in common.
///
/// Stretches of eight keys that stand exactly once in either sequence, in the same order, are anchors; between them a
/// longest common subsequence is found. Where texts correspond the anchors are dense and the stretches between them
/// short.
namespace SequenceAlignment {

using Key = CommonSubsequence::Key;

/// A stretch between anchors whose table would have more cells, (n + 1) × (m + 1), stays unpaired.
constexpr size_t mostCells = 3'000'000;

/// A stretch of keys that both sequences have.
struct Anchor
{
    qint32 source; ///< Where it starts.
    qint32 script;
};

/// Stretches of `length` keys, 1 or more, each once in either sequence; ascending in both and apart in both. Sequences
/// are shorter than 2^31.
std::vector<Anchor> anchors(std::span<const Key> source, std::span<const Key> script, size_t length,
                            const std::function<void()> &check);

/// For each element of `source` the position of its partner in `script`, or -1. Partners have equal keys and ascend.
/// Keys are below `keyCount`, and both sequences are shorter than 2^31. What `check`, called from time to time, throws
/// ends the call.
std::vector<qint32> match(std::span<const Key> source, std::span<const Key> script, Key keyCount,
                          const std::function<void()> &check);

} // namespace SequenceAlignment
