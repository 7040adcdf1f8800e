#pragma once

#include "core/Failure.h"
#include "core/Subtitle.h"

#include <QList>

#include <functional>
#include <optional>

/// Cues made from speech.
struct GeneratedSubtitles
{
    QList<Subtitle> cues;
    std::optional<QList<Subtitle>> unreviewed = {}; ///< The recogniser's own text, where a review has changed it.
    std::optional<Failure> notice = {};             ///< A sentence that the person should read, and its reason.
};

namespace SubtitleGeneration {

/// The last step after any recogniser: hands `cues` to `review`, unless it is empty. A review that fails costs nothing
/// but itself: the recognised text comes back with a notice.
/// @throws ConversionError "校对结果改变了字幕时间。"; Cancelled
GeneratedSubtitles finish(const QList<Subtitle> &cues,
                          const std::function<QList<Subtitle>(const QList<Subtitle> &)> &review);

} // namespace SubtitleGeneration
