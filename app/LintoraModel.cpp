#include "app/LintoraModel.h"

#include "app/JobTracks.h"
#include "core/ConversionError.h"
#include "core/CueEditing.h"
#include "store/Locations.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

LintoraModel::LintoraModel(Surroundings surroundings, QObject *parent)
    : QObject(parent)
    , m_dialogs(std::move(surroundings.dialogs))
    , m_preferences(std::move(surroundings.settings))
    , m_presetStore(surroundings.stylePresetsURL ? StylePresetStore(*surroundings.stylePresetsURL) : StylePresetStore())
    , m_keeper(surroundings.draftURL.value_or(Locations::draft()))
    , m_job(JobTracks::normalized(m_keeper.loadDraft().value_or(LintoraSession())))
    , m_history(m_job)
    , m_fillerWords(m_preferences.fillerWords())
    , m_pinned(m_preferences.floatingPinned())
{
    try {
        m_stylePresets = m_presetStore.load();
    } catch (const std::exception &error) {
        m_message = u"样式预设未能读取："_s + QString::fromUtf8(error.what());
    }
    for (const BackgroundTask *const task : {&m_import, &m_export, &m_match})
        connect(task, &BackgroundTask::activityChanged, this, &LintoraModel::activityChanged);
    connect(&m_keeper, &JobKeeper::arrived, this, &LintoraModel::takeSession);
    connect(&m_keeper, &JobKeeper::overruled, this, [this](const LintoraSession &session) {
        m_history.insertBefore(JobTracks::normalized(session));
        Q_EMIT historyChanged();
    });
    connect(&m_keeper, &JobKeeper::draftFailed, this,
            [this](const QString &description) { reportUnsaved(u"无法保存字幕草稿："_s, description); });
    connect(&m_keeper, &JobKeeper::sessionFailed, this,
            [this](const QString &description) { reportUnsaved(u"无法同步悬浮字幕："_s, description); });
}

LintoraModel::~LintoraModel() = default;

QList<SubtitleTrack> LintoraModel::visibleTracks() const
{
    QList<SubtitleTrack> shown = tracks();
    if (shown.size() > 1)
        shown.removeIf([&](const SubtitleTrack &track) { return track.id == m_job.splitOriginal; });
    return shown;
}

void LintoraModel::apply(const LintoraSession &session)
{
    loadJob(JobTracks::normalized(session));
}

// What is said

std::optional<QString> LintoraModel::activity() const
{
    for (const BackgroundTask *const task : {&m_import, &m_export, &m_match}) {
        if (task->activity())
            return task->activity();
    }
    return std::nullopt;
}

void LintoraModel::cancelActivity()
{
    const bool wasMatching = m_match.isRunning();
    m_import.cancel();
    m_export.cancel();
    m_match.cancel();
    if (wasMatching)
        setScriptStatus({});
}

void LintoraModel::report(const QString &message)
{
    publish(m_failure, std::optional<QString>(), &LintoraModel::failureChanged);
    publish(m_message, message, &LintoraModel::messageChanged);
}

void LintoraModel::reportFailure(const QString &sentence)
{
    publish(m_failure, std::optional(sentence), &LintoraModel::failureChanged);
}

bool LintoraModel::refuseWhileBusy(const QString &sentence)
{
    if (aiBusy())
        reportFailure(sentence);
    return aiBusy();
}

// The job

void LintoraModel::replaceJob(LintoraSession next, Step step)
{
    if (next == m_job)
        return;
    const LintoraSession before = std::exchange(m_job, std::move(next));
    if (step == Step::amend || (m_isGesture && m_gestureRecorded))
        m_history.amend(m_job);
    else
        m_history.record(m_job);
    m_gestureRecorded = m_gestureRecorded || (m_isGesture && step == Step::record);
    m_keeper.announceChange();
    schedulePersist();
    emitChanges(before);
    Q_EMIT historyChanged();
}

void LintoraModel::replaceItems(const QList<Subtitle> &items, Step step)
{
    LintoraSession next = m_job;
    next.items = items;
    replaceJob(JobTracks::committed(std::move(next)), step);
}

/// A job from elsewhere takes this one's place.
void LintoraModel::loadJob(LintoraSession next)
{
    Q_EMIT loaded();
    replaceJob(std::move(next));
}

void LintoraModel::emitChanges(const LintoraSession &before)
{
    // A receiver may change the job again; it then hears of that first, which is the newer state anyway.
    const LintoraSession now = m_job;
    const bool haveCuesChanged = before.items != now.items;
    if (haveCuesChanged)
        Q_EMIT itemsChanged();
    if (before.source != now.source)
        Q_EMIT sourceChanged();
    if (before.options != now.options)
        Q_EMIT optionsChanged();
    if (before.removeFillers != now.removeFillers)
        Q_EMIT removeFillersChanged();
    if (before.removePunctuation != now.removePunctuation)
        Q_EMIT removePunctuationChanged();
    if (before.previousItems != now.previousItems)
        Q_EMIT previousItemsChanged();
    if (before.cleaned != now.cleaned)
        Q_EMIT cleanedChanged();
    // The selected track has the cues too, which need not be compared again. Another one may be selected now.
    const bool isSameTrack = before.selectedTrackID == now.selectedTrackID;
    if ((haveCuesChanged && isSameTrack) || before.tracks != now.tracks)
        Q_EMIT tracksChanged();
    if (before.selectedTrackID != now.selectedTrackID)
        Q_EMIT selectedTrackIDChanged();
    if (before.splitOriginal != now.splitOriginal)
        Q_EMIT splitOriginalChanged();
}

// Tracks

void LintoraModel::selectTrack(const QUuid &id)
{
    replaceJob(JobTracks::selecting(m_job, id), Step::amend);
}

void LintoraModel::moveCue(qsizetype index, const QUuid &to)
{
    if (refuseWhileBusy(u"任务处理中，请先取消再编辑字幕"_s) || index < 0 || index >= items().size() ||
        to == selectedTrackID() || !JobTracks::indexOf(m_job, to))
        return;
    replaceJob(JobTracks::movingCue(m_job, index, to));
    const auto target = JobTracks::indexOf(m_job, to);
    report(u"已移到“%1”"_s.arg(tracks().at(*target).label));
}

// Cues

template <class Change>
std::optional<qsizetype> LintoraModel::editCues(qsizetype next, const Change &change)
{
    if (refuseWhileBusy(u"任务处理中，请先取消再编辑字幕"_s))
        return std::nullopt;
    try {
        replaceItems(change(items()));
    } catch (const ConversionError &error) {
        reportFailure(error.message());
        return std::nullopt;
    }
    publish(m_failure, std::optional<QString>(), &LintoraModel::failureChanged);
    return std::clamp<qsizetype>(next, -1, items().size() - 1);
}

std::optional<qsizetype> LintoraModel::setText(qsizetype index, const QString &text)
{
    return editCues(index, [&](const auto &cues) { return CueEditing::settingText(cues, index, text); });
}

std::optional<qsizetype> LintoraModel::setTimes(qsizetype index, qint64 startMS, qint64 endMS)
{
    return editCues(index, [&](const auto &cues) { return CueEditing::settingTimes(cues, index, startMS, endMS); });
}

std::optional<qsizetype> LintoraModel::insertCue(qsizetype after)
{
    if (tracks().isEmpty() && !aiBusy()) {
        const QList<Subtitle> first = CueEditing::inserting({}, -1);
        replaceJob(JobTracks::importing(m_job, first, source()));
        return 0;
    }
    return editCues(after + 1, [&](const auto &cues) { return CueEditing::inserting(cues, after); });
}

std::optional<qsizetype> LintoraModel::deleteCues(const QList<qsizetype> &indices)
{
    const qsizetype first = indices.isEmpty() ? 0 : *std::min_element(indices.begin(), indices.end());
    return editCues(first, [&](const auto &cues) { return CueEditing::removing(cues, indices); });
}

std::optional<qsizetype> LintoraModel::splitCue(qsizetype index, qsizetype position)
{
    return editCues(index + 1, [&](const auto &cues) { return CueEditing::splitting(cues, index, position); });
}

std::optional<qsizetype> LintoraModel::joinWithNext(qsizetype index)
{
    return editCues(index, [&](const auto &cues) { return CueEditing::joining(cues, index); });
}

// History

bool LintoraModel::canUndo() const
{
    return m_history.canUndo() && !aiBusy();
}

bool LintoraModel::canRedo() const
{
    return m_history.canRedo() && !aiBusy();
}

void LintoraModel::undo()
{
    if (canUndo())
        step(&EditHistory::undo, u"已撤销"_s);
}

void LintoraModel::redo()
{
    if (canRedo())
        step(&EditHistory::redo, u"已重做"_s);
}

void LintoraModel::step(const LintoraSession &(EditHistory::*direction)(), const QString &message)
{
    endGesture();
    const LintoraSession before = std::exchange(m_job, (m_history.*direction)());
    m_keeper.announceChange();
    schedulePersist();
    emitChanges(before);
    Q_EMIT historyChanged();
    report(message);
}

// Jobs that own the cues

void LintoraModel::beginAIJob(std::shared_ptr<LocalAIJob> job)
{
    setFindReplaceVisible(false);
    publish(m_aiJob, std::move(job), &LintoraModel::aiBusyChanged);
    Q_EMIT historyChanged();
}

void LintoraModel::endAIJob()
{
    publish(m_aiJob, std::shared_ptr<LocalAIJob>(), &LintoraModel::aiBusyChanged);
    Q_EMIT historyChanged();
    if (const auto held = std::exchange(m_heldSession, std::nullopt))
        takeSession(*held);
}

void LintoraModel::cancelAI()
{
    if (m_aiJob)
        m_aiJob->cancel();
}
