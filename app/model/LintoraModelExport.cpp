// What goes out.

#include "app/model/Exports.h"
#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "fcp/titles/SubtitleTransfer.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// Done on the worker, and what is said then.
using Written = QString;

} // namespace

/// What a file of the selected track is called, after `of` or the session's source.
QString LintoraModel::exportName(const QString &of) const
{
    QString name = of.isEmpty() ? QFileInfo(source()).completeBaseName() : of;
    if (name.isEmpty())
        name = options().name;
    if (const auto index = SessionTracks::selectedIndex(m_session.state()); index && visibleTracks().size() > 1)
        name += u'_' + tracks().at(*index).label;
    return Exports::fileName(name);
}

void LintoraModel::exportSRT()
{
    m_dialogs.save({.title = u"导出 SRT"_s, .suggestion = exportName() + u".srt"_s, .extension = u"srt"_s},
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
    m_dialogs.folder(u"导出全部 SRT"_s, [this, tracks = tracks()](const QString &folder) {
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
    exportTitles(std::nullopt);
}

void LintoraModel::exportToProject()
{
    // Undoing the import of a project, or opening another session, may leave one that these titles do not fit.
    if (m_project && m_project->rate == options().rate) {
        exportTitles(m_project);
        return;
    }
    if (m_owner.refuses(u"任务处理中，请先取消再导入"_s))
        return;
    m_dialogs.open({.title = u"选择要写入字幕的 FCP 项目"_s, .extensions = {u"fcpxml"_s, u"fcpxmld"_s}},
                   [this](const QString &path) {
                       loadProject(path, [this] {
                           if (m_project)
                               exportTitles(m_project);
                       });
                   });
}

void LintoraModel::exportTitles(const std::optional<FCPProject> &project)
{
    const QString name = project ? exportName(options().name) : exportName();
    m_dialogs.save({.title = u"导出 FCPXML"_s, .suggestion = name + u".fcpxml"_s, .extension = u"fcpxml"_s},
                   [this, cues = items(), options = options(), project](const QString &path) {
                       m_export.run(
                           u"正在写入并核对字幕…"_s,
                           [path, cues, options, project](Job &job, const ProgressReport & /*report*/) {
                               Exports::writeTitles(path, cues, options, project, job);
                               return Written(u"已写入并核对 %1 条字幕，逐帧一致"_s.arg(cues.size()));
                           },
                           [this](const Written &message) { report(message); },
                           [this](const Failure &failure) { reportFailure(failure); });
                   });
}

std::optional<QByteArray> LintoraModel::payload(std::optional<QUuid> trackID)
{
    const auto index =
        trackID ? SessionTracks::indexOf(m_session.state(), *trackID) : SessionTracks::selectedIndex(m_session.state());
    if (trackID && !index) {
        reportFailure(u"该语言组已关闭，请重新拖动字幕卡片"_s);
        return std::nullopt;
    }
    try {
        const SubtitleTrack track = index ? tracks().at(*index) : SubtitleTrack{.options = options()};
        return SubtitleTransfer::clip(track.items, track.options);
    } catch (const ConversionError &error) {
        reportFailure(Failure::of(error));
    } catch (const PlatformError &error) {
        reportFailure(Failure::of(error));
    }
    return std::nullopt;
}
