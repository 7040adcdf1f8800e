// What comes in.

#include "ai/speech/MediaFiles.h"
#include "app/model/FCPPasteboard.h"
#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "fcp/FCPXML.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString &unknownFile()
{
    static const QString sentence = u"请拖入 SRT 文件，或 FCP 项目以匹配画面和帧率。"_s;
    return sentence;
}

/// `isSelection`: clips out of a timeline, of which none gives the whole its name.
QString planMessage(const FCPAudioPlan &plan, bool isSelection)
{
    QString message = isSelection ? u"已接入 FCP 时间线"_s : u"已接入 FCP："_s + plan.name;
    message += u" · %1 个音频片段 · 保留剪切范围与间隔"_s.arg(plan.segments.size());
    if (plan.hasAudioEffects)
        message += u" · 按原始音轨识别，音频特效不参与"_s;
    if (const auto notice = plan.retimeNotice())
        message += u" · "_s + *notice;
    if (const auto notice = plan.unreadableNotice())
        message += u" · 已跳过 "_s + *notice;
    return message;
}

/// The look goes on; where the last document began and what it was called does not, unless a project is kept for it.
Options forAnother(Options options, bool keepsName)
{
    options.shiftMS = 0;
    if (!keepsName)
        options.name = Options().name;
    return options;
}

} // namespace

void LintoraModel::receiveURL(const QUrl &url)
{
    if (m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
        return;
    if (url.scheme() == u"lintora")
        openSession(url);
    else
        load(url);
}

void LintoraModel::load(const QUrl &file)
{
    if (m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
        return;
    const QString path = file.toLocalFile();
    const auto kind = Imports::kindOf(path);
    if (path.isEmpty() || !kind) {
        reportFailure(unknownFile());
        if (Imports::isOtherSubtitles(path))
            offerRepair(path);
    } else if (*kind == Imports::Kind::project) {
        loadProject(path, [] {});
    } else if (*kind == Imports::Kind::media) {
        m_recognition.setMedia(file);
        noteOpened(path);
        showAI(WindowState::AIMode::speech);
    } else {
        loadSubtitles(path);
    }
}

/// What was refused may be looked at, and opened by choice.
void LintoraModel::offerRepair(const QString &path)
{
    if (QFileInfo(path).isFile() && QFileInfo(path).isReadable())
        m_fileRepairing.offer(path);
}

void LintoraModel::loadSubtitles(const QString &path)
{
    m_import.run(
        u"正在读取字幕…"_s,
        [path, options = forAnother(options(), true)](Job &job, const ProgressReport & /*report*/) {
            return Imports::Imported(Imports::readSubtitles(path, options, job));
        },
        [this](const Imports::Imported &imported) {
            // A job may have begun while the file was read.
            if (!m_owner.refuses(u"任务处理中，请先取消再导入"_s))
                takeImported(imported);
        },
        [this, path](const Failure &failure) {
            reportFailure(failure);
            offerRepair(path);
        });
}

void LintoraModel::takeRepaired(const Imports::ImportedCues &cues, qsizetype repairs)
{
    if (m_owner.refuses(u"任务处理中，请先取消再导入"_s))
        return;
    takeCues(cues);
    if (repairs > 0)
        report(u"已修复并载入 · 修复 %1 处"_s.arg(repairs));
}

void LintoraModel::loadProject(const QString &path, std::function<void()> then)
{
    importFrom(
        u"正在读取项目…"_s, [path](Job &job) { return Imports::readTimeline(path, job); },
        [this, path, then = std::move(then)] {
            noteOpened(path);
            then();
        });
}

bool LintoraModel::receive(const QMimeData &pasteboard)
{
    if (m_owner.refuses(u"任务处理中，请先取消再导入"_s))
        return false;
    if (const auto type = FCPPasteboard::offeredType(pasteboard)) {
        const QByteArray data = pasteboard.data(*type);
        try {
            FCPXML::checkDragged(data);
        } catch (const ConversionError &error) {
            reportFailure(Failure::of(error));
            return false;
        }
        importFrom(
            u"正在读取项目…"_s, [data](Job &job) { return Imports::readTimeline(data, job); }, [] {});
        return true;
    }
    QList<QUrl> files = pasteboard.urls();
    files.removeIf([](const QUrl &url) { return !url.isLocalFile(); });
    if (files.size() != 1) {
        reportFailure(u"请一次拖入一个字幕、音视频或 FCP 项目。"_s);
        return false;
    }
    load(files.first());
    return true;
}

/// `path` was taken in: it is among the recent ones, and dialogs begin beside it.
void LintoraModel::noteOpened(const QString &path)
{
    m_openFile = path;
    m_keeping.run(
        u"正在记录最近的文件…"_s,
        [recent = m_recent, path](Job & /*job*/, const ProgressReport & /*report*/) {
            recent.note(path);
            return recent.list();
        },
        [this](const QList<RecentWork::Entry> &entries) {
            publish(m_recentWork, entries, &LintoraModel::recentWorkChanged);
        },
        [](const Failure & /*failure*/) {}); // The file is open all the same: a list that lacks it is no news.
}

void LintoraModel::openRecent(const RecentWork::Entry &entry)
{
    if (m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
        return;
    m_import.run(
        u"正在打开字幕…"_s,
        [recent = m_recent, entry](Job & /*job*/, const ProgressReport & /*report*/) {
            recent.require(entry);
            return entry;
        },
        [this](const RecentWork::Entry &found) {
            if (found.kind == RecentWork::Kind::session)
                openKept(found.file);
            else
                load(QUrl::fromLocalFile(found.file));
        },
        [this, entry](const Failure &failure) {
            QList<RecentWork::Entry> left = m_recentWork;
            left.removeAll(entry);
            publish(m_recentWork, left, &LintoraModel::recentWorkChanged);
            reportFailure(failure);
        });
}

void LintoraModel::openKept(const QString &file)
{
    m_import.run(
        u"正在打开字幕…"_s,
        [file](Job &job, const ProgressReport & /*report*/) {
            return LintoraSession::read(file, [&] { job.check(); });
        },
        [this](const LintoraSession &session) {
            apply(session);
            if (aiBusy())
                return;
            m_openFile.clear();
            report(u"已载入"_s);
        },
        [this](const Failure &failure) { reportFailure(failure); });
}

void LintoraModel::choose()
{
    m_dialogs.open({.title = u"打开 SRT"_s, .extensions = {u"srt"_s}, .beside = m_openFile},
                   [this](const QString &path) { load(QUrl::fromLocalFile(path)); });
}

void LintoraModel::chooseImport()
{
    m_dialogs.open({.title = u"导入字幕、音视频或 FCP 项目"_s,
                    .extensions = QStringList{u"srt"_s, u"fcpxml"_s, u"fcpxmld"_s} + MediaFiles::extensions(),
                    .kinds = u"SRT、音视频、FCP 项目"_s,
                    .beside = m_openFile},
                   [this](const QString &path) { load(QUrl::fromLocalFile(path)); });
}

void LintoraModel::chooseMedia()
{
    m_dialogs.open(
        {.title = u"选择音视频"_s, .extensions = MediaFiles::extensions(), .kinds = u"音视频"_s, .beside = m_openFile},
        [this](const QString &path) { m_recognition.setMedia(QUrl::fromLocalFile(path)); });
}

void LintoraModel::showFCPImport()
{
    m_window.setFCPImportVisible(true);
}

/// Reads on a worker, takes what was read, and goes on with `then` when it could be taken.
void LintoraModel::importFrom(const QString &what, std::function<Imports::Imported(Job &)> read,
                              std::function<void()> then)
{
    m_import.run(
        what, [read = std::move(read)](Job &job, const ProgressReport & /*report*/) { return read(job); },
        [this, then = std::move(then)](const Imports::Imported &imported) {
            // A job may have begun while the file was read.
            if (m_owner.refuses(u"任务处理中，请先取消再导入"_s))
                return;
            takeImported(imported);
            then();
        },
        [this](const Failure &failure) { reportFailure(failure); });
}

void LintoraModel::takeImported(const Imports::Imported &imported)
{
    if (const auto *const cues = std::get_if<Imports::ImportedCues>(&imported))
        takeCues(*cues);
    else
        receiveFCP(std::get<Imports::ImportedTimeline>(imported));
    const auto *const timeline = std::get_if<Imports::ImportedTimeline>(&imported);
    if (timeline && timeline->isRefused())
        return;
    m_window.setFCPImportVisible(false);
}

void LintoraModel::takeCues(const Imports::ImportedCues &imported)
{
    LintoraSession next = m_session.state();
    next.options = forThese(next.options);
    m_session.replace(SessionTracks::importing(std::move(next), imported.cues, imported.source), u"载入字幕"_s,
                      EditStep::load);
    noteOpened(imported.file);
    report(u"已载入"_s);
}

/// A project gives its name to what is brought in to go into it.
Options LintoraModel::forThese(const Options &options) const
{
    const auto &project = m_keptProject.project();
    return forAnother(options, project && project->rate == options.rate);
}

void LintoraModel::readProjectTitles()
{
    const QList<SubtitleTrack> titles = m_keptProject.titles();
    if (titles.isEmpty() || m_owner.refuses(u"任务处理中，请先取消再导入"_s))
        return;
    LintoraSession next = m_session.state();
    next.options = forThese(next.options);
    const auto &project = m_keptProject.project();
    m_session.replace(SessionTracks::importing(std::move(next), titles, project ? project->name : QString()),
                      u"读取项目字幕"_s, EditStep::load);
    m_openFile.clear();
    qsizetype cues = 0;
    for (const SubtitleTrack &track : titles)
        cues += track.items.size();
    report(titles.size() > 1 ? u"已读取 %1 条字幕，分为 %2 组"_s.arg(cues).arg(titles.size())
                             : u"已读取 %1 条字幕"_s.arg(cues));
}

void LintoraModel::releaseProject()
{
    m_keptProject.release();
    report(u"已放开项目，字幕和样式不变"_s);
}

/// The project first: what can be heard on it matters less than that the titles fit it.
void LintoraModel::receiveFCP(const Imports::ImportedTimeline &timeline)
{
    if (timeline.isRefused()) {
        reportFailure(*timeline.failure);
        m_recognition.offer(timeline.readable);
        return;
    }
    m_keptProject.take(timeline);
    if (timeline.settings) {
        LintoraSession next = m_session.state();
        next.options = Imports::matching(next.options, *timeline.settings);
        for (SubtitleTrack &track : *next.tracks)
            track.options = Imports::matching(track.options, *timeline.settings);
        m_session.replace(std::move(next), u"匹配项目"_s);
    }
    m_recognition.setTimeline(timeline.plan);
    if (timeline.plan)
        report(planMessage(*timeline.plan, !timeline.project && !timeline.failure));
    else if (timeline.isSilent)
        report(u"已匹配项目；没有发现可识别音轨"_s);
    if (timeline.failure)
        reportFailure(*timeline.failure);
    m_recognition.offer(timeline.readable);
    m_keptProject.offer();
}
