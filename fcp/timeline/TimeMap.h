#pragma once

#include "fcp/Rational.h"

/// The straight line from an element's own time to the plan's. Seconds on both sides.
///
/// ```
///   own time    |------- local ------------->
///                        :  each second lasts `scale` seconds
///   plan        |------- plan -------------->
/// ```
struct TimeMap
{
    Rational local = {}; ///< A time of the element ...
    Rational plan = {};  ///< ... and where on the plan it lies.
    Rational scale = 1;  ///< Above 0.

    Rational toPlan(const Rational &localTime) const { return plan + (localTime - local) * scale; }
    Rational toLocal(const Rational &planTime) const { return local + (planTime - plan) / scale; }
};
