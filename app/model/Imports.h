#pragma once

#include "app/model/FCPProject.h"
#include "core/Failure.h"
#include "core/Job.h"
#include "core/Subtitle.h"
#include "core/repair/SubtitleRepair.h"
#include "fcp/audio/FCPAudioPlan.h"
#include "fcp/xml/XmlDocument.h"
#include "store/SubtitleTrack.h"

#include <QString>

#include <variant>

/// What comes in, read and judged. All of these block and belong on a worker.
namespace Imports {

/// Cues that are ready to become a session.
struct ImportedCues
{
    QList<Subtitle> cues;
    QString source;    ///< The file's name.
    QString file = {}; ///< Its path.
};

/// What a project or a selection of clips brings. At least one of the first three, or the last, is there.
struct ImportedTimeline
{
    std::optional<FCPProject> project = {}; ///< Absent when titles cannot be written into it.
    std::optional<Options> settings = {};   ///< Rate, size, font size and name that match it.
    std::optional<FCPAudioPlan> plan = {};  ///< Absent when it cannot be heard.
    bool isSilent = false;                  ///< Nothing on it can be heard, and that is all that is wrong with it.
    std::optional<Failure> failure = {};    ///< What is wrong in spite of all that is there.
    /// What could be heard without the clips that cannot be placed, where these are what is wrong. Only when asked for.
    std::optional<FCPAudioPlan> readable = {};
    QList<SubtitleTrack> titles = {}; ///< Those that stand in it, a track for each role and lane.

    bool isRefused() const { return !project && !plan && failure; } ///< Whether nothing of it can be taken as it is.
};

using Imported = std::variant<ImportedCues, ImportedTimeline>;

/// What `load` takes.
enum class Kind
{
    subtitles,
    project,
    media ///< Audio or video, whose speech is to be recognised.
};

/// By the file name's extension, in any case; absent for what is not taken.
std::optional<Kind> kindOf(const QString &path);

/// Reads an SRT file, and makes sure that titles with `options` can be made of it.
/// @throws ConversionError, PlatformError
ImportedCues readSubtitles(const QString &path, const Options &options, Job &job);

/// Whether the extension is that of WebVTT, ASS or SSA, of which something may be lost.
bool isOtherSubtitles(const QString &path);

/// Reads a subtitle file by choice that the strict reader does not take; in the likeliest encoding where none is named.
/// Whether titles can be made of it is known when they are.
/// @throws ConversionError, PlatformError
RepairedFile readRepaired(const QString &path, const QString &encoding, Job &job);

/// Reads a project file or bundle. @throws ConversionError, PlatformError when nothing of it is of use
ImportedTimeline readTimeline(const QString &path, Job &job);

/// The same for data that was dragged. @throws ConversionError "FCP 数据过大或含不支持的 XML 实体。" too
ImportedTimeline readTimeline(const QByteArray &dragged, Job &job);

/// The document of a project that was imported. @throws ConversionError, PlatformError
XmlDocument document(const FCPProject &project, const Check &check);

/// `options` with the rate, sizes and name of `matched`.
Options matching(Options options, const Options &matched);

} // namespace Imports
