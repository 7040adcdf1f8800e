#pragma once

#include "fcp/Rational.h"

#include <libxml/tree.h>

#include <optional>

/// A speed change that holds for a whole clip: a straight line from the clip's own time, in which its "start" and what
/// is connected to it count, to the time of what it contains.
///
/// ```
///   clip time      |-- time ------------>
///                      :   each second shows `speed` seconds
///   content time   |-- content --------->
/// ```
struct SpeedMap
{
    Rational time = {};    ///< Seconds of the clip's own time ...
    Rational content = {}; ///< ... and what is shown then.
    Rational speed = 1;    ///< Above 0.

    /// Reads a "timeMap" element. Absent when the speed varies, when the clip stands still or runs backwards, and when
    /// the element does not tell.
    /// @throws RationalOverflow
    static std::optional<SpeedMap> read(const xmlNode *timeMap);
};
