#pragma once

#include "core/Check.h"
#include "core/Subtitle.h"
#include "fcp/Options.h"

#include <vector>

/// Cues checked for writing and laid on the frame grid.
namespace TitleGrid {

struct Title
{
    qint64 cueID;      ///< The cue's own id, by which messages name it.
    QStringView text;  ///< Without white space at both ends; a view into the cue.
    qint64 startFrame; ///< Frames from the project's start, not negative.
    qint64 endFrame;   ///< Above startFrame: a title lasts a frame at least.
};

/// The titles of `cues`, sorted by start frame; cues that start on the same frame keep their order. Every frame number
/// can be written as a time of the rate. `cues` must outlive the result.
/// @throws ConversionError "请先打开 SRT。", "画面或字体设置无效。", or about the first cue that cannot be written.
std::vector<Title> place(const QList<Subtitle> &cues, const Options &options, const Check &check = {});

/// Whether `frames` can be written as a time of `rate` and still be reckoned with to the microsecond. That is ten years
/// at the least.
bool isWritable(qint64 frames, const FrameRate &rate);

} // namespace TitleGrid
