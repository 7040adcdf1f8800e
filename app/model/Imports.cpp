#include "app/model/Imports.h"

#include "ai/speech/MediaFiles.h"
#include "core/SRT.h"
#include "core/files/FileReader.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"
#include "fcp/titles/SubtitleTransfer.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace Imports {

namespace {

/// Opening what is no regular file, a pipe for instance, might wait forever.
void checkRegular(const QString &path)
{
    const QFileInfo file(path);
    if (file.exists() && !file.isFile())
        throw ConversionError(u"“%1”不是可读取的文件。"_s.arg(file.fileName()));
}

/// Matches a project and keeps it. Sets `failure` when that cannot be.
void keepProject(ImportedTimeline &timeline, const XmlDocument &document, FCPProject project)
{
    try {
        timeline.settings = FCPXML::settings(Options(), document);
        project.name = QString::fromUtf8(Xml::attribute(FCPXML::project(document), "name").value_or(""));
        project.rate = timeline.settings->rate;
        timeline.project = std::move(project);
    } catch (const ConversionError &error) {
        timeline.failure = Failure::of(error);
    }
}

/// What was wrong first, `error` unless something was before.
ConversionError first(const ImportedTimeline &timeline, const ConversionError &error)
{
    return timeline.failure ? ConversionError(timeline.failure->sentence, timeline.failure->detail) : error;
}

/// The timeline without the clips that cannot be placed on it; absent where that is not what is wrong with it.
std::optional<FCPAudioPlan> readablePlan(const XmlDocument &document, Job &job)
{
    try {
        return FCPAudioPlan::parse(document, UnreadableClips::leaveOut, [&] { job.check(); });
    } catch (const ConversionError &) {
        return std::nullopt; // what was wrong before is told
    }
}

/// The titles that can be read. Where none can, matching and hearing the project are not touched by it.
QList<SubtitleTrack> standingTitles(const XmlDocument &document, bool isProject, const Check &check)
{
    QList<SubtitleTrack> titles;
    try {
        const auto tracks = ProjectTexts::read(document, isProject ? FCPXML::project(document) : nullptr, check);
        const auto origins = ProjectTexts::origins(document, tracks, check);
        for (size_t i = 0; i < tracks.size(); ++i) {
            if (!tracks[i].items.isEmpty())
                titles.append({.label = tracks[i].label, .items = tracks[i].items, .origins = origins[i]});
        }
    } catch (const ConversionError &) {
        titles.clear(); // as when there are none: they are an offer
    }
    return titles;
}

ImportedTimeline readTimeline(const XmlDocument &document, FCPProject project, Job &job)
{
    ImportedTimeline timeline;
    const bool isProject = FCPXML::projects(document).size() == 1;
    if (isProject)
        keepProject(timeline, document, std::move(project));
    job.check();
    try {
        timeline.plan = FCPAudioPlan::parse(document, UnreadableClips::refuse, [&] { job.check(); });
        if (!timeline.settings)
            timeline.settings = timeline.plan->settings;
    } catch (const NothingAudible &error) {
        if (!timeline.project)
            throw first(timeline, error);
        timeline.isSilent = true;
    } catch (const ConversionError &error) {
        if (timeline.failure)
            throw first(timeline, error);
        timeline.readable = readablePlan(document, job);
        if (!timeline.project && !timeline.readable)
            throw;
        if (timeline.project && timeline.readable)
            timeline.readable->settings.reset(); // the project's are taken already
        timeline.failure = Failure::of(error);
    }
    job.check();
    timeline.titles = standingTitles(document, isProject, [&] { job.check(); });
    return timeline;
}

} // namespace

std::optional<Kind> kindOf(const QString &path)
{
    // The name of a bundle, which is a folder, may end with a slash.
    const QString suffix = QFileInfo(QDir::cleanPath(path)).suffix().toLower();
    if (suffix == u"srt")
        return Kind::subtitles;
    if (suffix == u"fcpxml" || suffix == u"fcpxmld")
        return Kind::project;
    if (MediaFiles::isMedia(path))
        return Kind::media;
    return std::nullopt;
}

bool isOtherSubtitles(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == u"vtt" || suffix == u"ass" || suffix == u"ssa";
}

ImportedCues readSubtitles(const QString &path, const Options &options, Job &job)
{
    checkRegular(path);
    const Check check = [&] { job.check(); };
    ImportedCues imported{.cues = SRT::read(path, check), .source = QFileInfo(path).fileName(), .file = path};
    job.check();
    SubtitleTransfer::clip(imported.cues, options, check);
    return imported;
}

RepairedFile readRepaired(const QString &path, const QString &encoding, Job &job)
{
    checkRegular(path);
    const QByteArray bytes = FileReader::readAll(path);
    return Failure::naming(path, [&] { return SubtitleRepair::read(bytes, encoding, [&] { job.check(); }); });
}

ImportedTimeline readTimeline(const QString &path, Job &job)
{
    const QString file = FCPXML::fileOf(path);
    checkRegular(file);
    const QByteArray bytes = FCPXML::bytes(path);
    job.check();
    const QString folder = QFileInfo(file).absolutePath();
    return Failure::naming(file, [&] {
        const XmlDocument document = FCPXML::document(bytes, folder, [&] { job.check(); });
        return readTimeline(document, {.document = bytes, .folder = folder, .name = {}, .rate = {}}, job);
    });
}

ImportedTimeline readTimeline(const QByteArray &dragged, Job &job)
{
    const XmlDocument document = FCPXML::draggedDocument(dragged, [&] { job.check(); });
    return readTimeline(document, {.document = dragged, .folder = std::nullopt, .name = {}, .rate = {}}, job);
}

XmlDocument document(const FCPProject &project, const Check &check)
{
    return project.folder ? FCPXML::document(project.document, *project.folder, check)
                          : XmlDocument::parse(project.document, u"不支持含外部实体的 XML。", check);
}

Options matching(Options options, const Options &matched)
{
    options.rate = matched.rate;
    options.width = matched.width;
    options.height = matched.height;
    options.fontSize = matched.fontSize;
    options.name = matched.name;
    return options;
}

} // namespace Imports
