#pragma once

#include "app/model/FCPProject.h"
#include "core/Job.h"
#include "core/Subtitle.h"
#include "fcp/titles/TitleTrack.h"
#include "fcp/validation/Problem.h"
#include "store/SubtitleTrack.h"

/// What goes out. All of these block and belong on a worker. A file is replaced whole or not at all.
namespace Exports {

/// @throws ConversionError "请先打开 SRT。" when there are no cues, PlatformError when the file cannot be replaced
void writeSRT(const QString &path, const QList<Subtitle> &cues, Job &job);

/// Writes an SRT file into `folder` for each of `tracks` that has cues: `name`, and the track's label where there are
/// several. A file that is there already stays; another name is found. Returns how many were written.
/// @throws ConversionError, PlatformError as writeSRT does; files already written stay then
qsizetype writeAllSRT(const QString &folder, const QString &name, const QList<SubtitleTrack> &tracks, Job &job);

/// Writes a title for each cue of `tracks`, as TitleTracks::of gives them, into `project`, or into a document of its
/// own without one. What was written is read back and held against the cues before it takes the target's place. Returns
/// what else is wrong with the document, which may have been so in the project.
/// @throws ConversionError, PlatformError
QList<Problem> writeTitles(const QString &path, const std::vector<TitleTrack> &tracks,
                           const std::optional<FCPProject> &project, Job &job);

/// `name` as a file can bear it, without an extension; 字幕 when nothing of it is left.
QString fileName(const QString &name);

} // namespace Exports
