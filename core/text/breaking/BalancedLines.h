#pragma once

#include "core/text/breaking/BreakPoints.h"

#include <span>
#include <vector>

/// Chooses where to break a text so that every line fits, the places are good ones and the lines are of much the same
/// width, all weighed over the whole text.
namespace BalancedLines {

/// Reused from text to text, so that a small choice costs no allocation.
struct Scratch
{
    struct Node
    {
        double cost = 0;
        int from = 0;
    };

    /// What of a point is asked again and again.
    struct Place
    {
        size_t point = 0; ///< Its index.
        int endWidth = 0;
        int beginWidth = 0;
        int cost = 0;
    };

    std::vector<Node> nodes;
    std::vector<Place> places;
    std::vector<int> costs;
};

/// The indices of those of `points`, places in a text that is `begin` to `end` half columns wide, at which it is to be
/// broken into lines of at most `limit` half columns; ascending, and none when it fits. A line is wider only where a
/// single character is. The result stays valid until the next call with the same scratch.
void choose(std::span<const BreakPoint> points, int begin, int end, int limit, Scratch &scratch,
            std::vector<size_t> &chosen);

} // namespace BalancedLines
