#pragma once

#include "app/model/FCPProject.h"
#include "core/Job.h"
#include "core/Subtitle.h"
#include "fcp/Options.h"
#include "store/SubtitleTrack.h"

/// What goes out. All of these block and belong on a worker. A file is replaced whole or not at all.
namespace Exports {

/// @throws ConversionError "请先打开 SRT。" when there are no cues, PlatformError when the file cannot be replaced
void writeSRT(const QString &path, const QList<Subtitle> &cues, Job &job);

/// Writes an SRT file into `folder` for each of `tracks` that has cues: `name`, and the track's label where there are
/// several. A file that is there already stays; another name is found. Returns how many were written.
/// @throws ConversionError, PlatformError as writeSRT does; files already written stay then
qsizetype writeAllSRT(const QString &folder, const QString &name, const QList<SubtitleTrack> &tracks, Job &job);

/// Writes a title for each cue into `project`, or into a document of its own without one. What was written is read back
/// and held against the cues before it takes the target's place.
/// @throws ConversionError, PlatformError
void writeTitles(const QString &path, const QList<Subtitle> &cues, const Options &options,
                 const std::optional<FCPProject> &project, Job &job);

/// `name` as a file can bear it, without an extension; 字幕 when nothing of it is left.
QString fileName(const QString &name);

} // namespace Exports
