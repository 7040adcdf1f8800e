#pragma once

#include "fcp/Rational.h"

#include <algorithm>
#include <optional>

/// The half-open range [begin, end) of a timeline, in seconds. Without an end it is open for good.
struct TimeRange
{
    Rational begin = {};
    std::optional<Rational> end = {};

    bool isEmpty() const { return end && *end <= begin; }

    /// What lies in both.
    TimeRange cutTo(const TimeRange &window) const
    {
        std::optional<Rational> last = end ? end : window.end;
        if (window.end)
            last = std::min(*last, *window.end);
        return {.begin = std::max(begin, window.begin), .end = last};
    }
};
