#pragma once

#include "fcp/timeline/TimeRange.h"

#include <libxml/tree.h>

#include <QByteArrayView>

#include <optional>
#include <vector>

/// How loud a clip is played, as a linear factor: 1 leaves the sound as it is.
namespace ClipVolume {

/// The level of an "adjust-volume" element as a factor. A level that moves over time (keyframes) counts as the one that
/// holds for most of `sound`, the clip's range in its own time; fades are passed over. 1 where no level can be read.
double factor(const xmlNode *adjustVolume, const TimeRange &sound);

/// The product of all "adjust-volume" elements among the children of a clip or of a component.
double product(const std::vector<const xmlNode *> &children, const TimeRange &sound);

/// The factor of a level in decibels: levels above 24 count as 24, levels below −96 as −96.
double fromDecibels(double level);

/// The number in a text like "-6.5dB"; the unit may be missing. Absent when it is none.
std::optional<double> decibels(QByteArrayView text);

} // namespace ClipVolume
