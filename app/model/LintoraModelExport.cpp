// What goes out.

#include "app/model/Exports.h"
#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "app/model/TitleTracks.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "fcp/titles/SubtitleTransfer.h"
#include "fcp/validation/DocumentCheck.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Done on the worker, and what is said then.
using Written = QString;

} // namespace

/// What a file is called, after `of` or the session's source; one of several tracks bears the track's label too.
QString LintoraModel::exportName(Exported which, const QString &of) const
{
    QString name = of.isEmpty() ? QFileInfo(source()).completeBaseName() : of;
    if (name.isEmpty())
        name = options().name;
    const auto index = SessionTracks::selectedIndex(m_session.state());
    if (which == Exported::selectedTrack && index && visibleTracks().size() > 1)
        name += u'_' + tracks().at(*index).label;
    return Exports::fileName(name);
}

QList<SubtitleTrack> LintoraModel::exportedTracks(Exported which) const
{
    if (which == Exported::shownTracks)
        return visibleTracks();
    const auto index = SessionTracks::selectedIndex(m_session.state());
    return index ? QList{tracks().at(*index)} : QList<SubtitleTrack>();
}

void LintoraModel::exportSRT()
{
    m_dialogs.save({.title = u"导出 SRT"_s,
                    .suggestion = exportName(Exported::selectedTrack) + u".srt"_s,
                    .extension = u"srt"_s,
                    .beside = m_openFile},
                   [this, cues = items()](const QString &path) {
                       m_export.run(
                           u"正在导出 SRT…"_s,
                           [path, cues](Job &job, const ProgressReport & /*report*/) {
                               Exports::writeSRT(path, cues, job);
                               return Written(u"已导出 %1 条字幕"_s.arg(cues.size()));
                           },
                           [this](const Written &message) { report(message); },
                           [this](const Failure &failure) { reportFailure(failure); });
                   });
}

void LintoraModel::exportAllSRT()
{
    m_dialogs.folder(
        {.title = u"导出全部 SRT"_s, .beside = m_openFile}, [this, tracks = tracks()](const QString &folder) {
            const QString name = source().isEmpty() ? options().name : QFileInfo(source()).completeBaseName();
            m_export.run(
                u"正在导出 SRT…"_s,
                [folder, name, tracks](Job &job, const ProgressReport & /*report*/) {
                    return Written(u"已导出 %1 个 SRT 文件"_s.arg(Exports::writeAllSRT(folder, name, tracks, job)));
                },
                [this](const Written &message) { report(message); },
                [this](const Failure &failure) { reportFailure(failure); });
        });
}

void LintoraModel::exportFCPXML()
{
    exportTitles(Exported::selectedTrack, std::nullopt);
}

void LintoraModel::exportAllFCPXML()
{
    exportTitles(Exported::shownTracks, std::nullopt);
}

void LintoraModel::exportToProject()
{
    exportIntoProject(Exported::selectedTrack);
}

void LintoraModel::exportAllToProject()
{
    exportIntoProject(Exported::shownTracks);
}

void LintoraModel::exportIntoProject(Exported which)
{
    // Undoing the import of a project, or opening another session, may leave one that these titles do not fit.
    const QList<SubtitleTrack> tracks = exportedTracks(which);
    const Options first = tracks.isEmpty() ? options() : tracks.first().options;
    if (const auto &project = m_keptProject.project(); project && project->rate == first.rate) {
        exportTitles(which, project);
        return;
    }
    if (m_owner.refuses(u"任务处理中，请先取消再导入"_s))
        return;
    m_dialogs.open(
        {.title = u"选择要写入字幕的 FCP 项目"_s, .extensions = {u"fcpxml"_s, u"fcpxmld"_s}, .beside = m_openFile},
        [this, which](const QString &path) {
            loadProject(path, [this, which] {
                if (m_keptProject.project())
                    exportTitles(which, m_keptProject.project());
            });
        });
}

void LintoraModel::showTitleWriting()
{
    const QList<SubtitleTrack> tracks = exportedTracks(Exported::selectedTrack);
    if (m_owner.refuses(u"任务处理中，请先取消再导出"_s) || tracks.isEmpty())
        return;
    if (const auto &project = m_keptProject.project()) {
        m_titleWriting.show(*project, tracks.first());
        return;
    }
    m_dialogs.open(
        {.title = u"选择标题所在的 FCP 项目"_s, .extensions = {u"fcpxml"_s, u"fcpxmld"_s}, .beside = m_openFile},
        [this](const QString &path) {
            loadProject(path, [this] {
                if (m_keptProject.project())
                    showTitleWriting();
            });
        });
}

QString LintoraModel::titleWritingName() const
{
    return Exports::fileName(m_titleWriting.name()) + u"_字幕.fcpxml"_s;
}

void LintoraModel::exportTitles(Exported which, const std::optional<FCPProject> &project)
{
    const QString name = exportName(which, project ? options().name : QString());
    m_dialogs.save(
        {.title = u"导出 FCPXML"_s, .suggestion = name + u".fcpxml"_s, .extension = u"fcpxml"_s, .beside = m_openFile},
        [this, tracks = exportedTracks(which), project](const QString &path) {
            m_export.run(
                u"正在写入并核对字幕…"_s,
                [path, tracks, project](Job &job, const ProgressReport & /*report*/) {
                    return Exports::writeTitles(path, TitleTracks::of(tracks), project, job);
                },
                [this, tracks](const QList<Problem> &problems) { reportWritten(tracks, problems); },
                [this](const Failure &failure) { reportFailure(failure); });
        });
}

/// The receipt: what was written, and what a person should know of it.
void LintoraModel::reportWritten(const QList<SubtitleTrack> &tracks, const QList<Problem> &problems)
{
    qsizetype cues = 0;
    for (const SubtitleTrack &track : tracks)
        cues += track.items.size();
    QStringList said{u"已写入并核对 %1 条字幕，逐帧一致"_s.arg(cues)};
    if (const QString covering = TitleTracks::covering(tracks); !covering.isEmpty())
        said += covering;
    const auto errors = std::ranges::count(problems, Problem::Severity::error, &Problem::severity);
    if (!problems.isEmpty())
        said += u"文档检查：%1 处错误，%2 处警告"_s.arg(errors).arg(problems.size() - errors);
    QStringList details;
    for (const Problem &problem : problems.first(std::min(DocumentCheck::mostTold, problems.size())))
        details += problem.toText();
    reportWithDetail(said.join(u" · "_s), details.join(u'\n'));
}

std::optional<QByteArray> LintoraModel::payload(std::optional<QUuid> trackID)
{
    if (!trackID)
        return clipOf(exportedTracks(Exported::selectedTrack));
    if (const auto index = SessionTracks::indexOf(m_session.state(), *trackID))
        return clipOf({tracks().at(*index)});
    reportFailure(u"该语言组已关闭，请重新拖动字幕卡片"_s);
    return std::nullopt;
}

std::optional<QByteArray> LintoraModel::payloadOfAll()
{
    return clipOf(exportedTracks(Exported::shownTracks));
}

std::optional<QByteArray> LintoraModel::clipOf(const QList<SubtitleTrack> &tracks)
{
    try {
        return SubtitleTransfer::clip(TitleTracks::of(tracks));
    } catch (const ConversionError &error) {
        reportFailure(Failure::of(error));
    } catch (const PlatformError &error) {
        reportFailure(Failure::of(error));
    }
    return std::nullopt;
}
