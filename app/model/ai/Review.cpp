#include "app/model/ai/Review.h"

#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/text/Answerer.h"
#include "app/model/SessionTracks.h"
#include "app/model/ai/AISettings.h"
#include "app/model/ai/AIWorkers.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isCueForCue(const QList<Subtitle> &a, const QList<Subtitle> &b)
{
    return std::ranges::equal(a, b, [](const Subtitle &one, const Subtitle &other) {
        return one.id == other.id && one.start == other.start && one.end == other.end;
    });
}

/// What a proofreading has come to, made on the worker.
struct Outcome
{
    QList<ReviewRow> rows;
    std::function<void()> forget;
};

QString summary(const QList<ReviewRow> &rows)
{
    const auto changed = std::ranges::count_if(rows, &ReviewRow::changed);
    if (changed == 0)
        return u"校对完成，没有需要修改的字幕"_s;
    const auto risky = std::ranges::count_if(rows, [](const ReviewRow &row) { return bool(row.risks); });
    const QString result = u"已校对 %1 条，%2 条有改动"_s.arg(rows.size()).arg(changed);
    return risky == 0 ? result : result + u"，其中 %1 条请先确认"_s.arg(risky);
}

} // namespace

Review::Review(EditedSession &session, CueOwnership &owner, const AISettings &settings)
    : m_session(session)
    , m_owner(owner)
    , m_settings(settings)
{
    connect(&owner, &CueOwnership::busyChanged, this, &Review::follow);
}

void Review::follow()
{
    if (!m_owner.isBusy() && std::exchange(m_isRunning, false))
        Q_EMIT runningChanged();
}

std::optional<SubtitleTrack> Review::referenceTrack() const
{
    const LintoraSession &state = m_session.state();
    const auto found = std::ranges::find_if(*state.tracks, [&](const SubtitleTrack &each) {
        // The kept original from before a separation holds the track's own text too.
        return each.id != state.selectedTrackID && SessionTracks::isSelectable(state, each.id) &&
               !each.items.isEmpty() && isCueForCue(each.items, state.items);
    });
    return found == state.tracks->end() ? std::nullopt : std::optional(*found);
}

std::optional<QString> Review::reference() const
{
    const auto track = referenceTrack();
    return track ? std::optional(track->label) : std::nullopt;
}

void Review::start()
{
    const LintoraSession &state = m_session.state();
    if (state.items.isEmpty()) {
        setStatus(u"请先载入字幕。"_s, true);
        return;
    }
    SubtitleAI::TextTask task{.work = SubtitleAI::TextWork::proofreading};
    if (m_settings.choices().aiUseReference) {
        if (const auto original = referenceTrack())
            task.references = original->items;
    }
    const auto work = [cues = state.items, task,
                       answerer = AIWorkers::answerer(m_settings)](LocalAIJob &job, const ProgressReport &report) {
        const AnsweredCues answered =
            SubtitleAI::answer(cues, task, answerer(), AnswerLedger::defaultFolder(), job, report);
        return Outcome{.rows = ReviewRows::make(cues, answered.cues), .forget = answered.forget};
    };
    const QUuid id = state.selectedTrackID.value_or(QUuid());
    const QString label = state.tracks->at(*SessionTracks::indexOf(state, id)).label;
    const bool isOwner = m_owner.run<LocalAIJob>(u"正在准备校对…"_s, work, [this, id, label](const Outcome &outcome) {
        m_trackID = id;
        m_source = label;
        take(outcome.rows);
        outcome.forget();
        Q_EMIT done(m_status);
    });
    if (!isOwner)
        return;
    m_isRunning = true;
    setStatus({});
    Q_EMIT runningChanged();
}

void Review::show(const QUuid &trackID, const QList<Subtitle> &before, const QList<Subtitle> &after)
{
    QList<ReviewRow> rows = ReviewRows::make(before, after);
    // They have been taken already.
    for (ReviewRow &row : rows)
        row.selected = row.changed();
    const auto index = SessionTracks::indexOf(m_session.state(), trackID);
    m_trackID = trackID;
    m_source = index ? m_session.state().tracks->at(*index).label : QString();
    take(rows);
}

void Review::take(const QList<ReviewRow> &rows)
{
    m_rows = rows;
    m_applied.reset();
    Q_EMIT rowsChanged();
    setStatus(summary(rows));
}

void Review::setRowSelected(qsizetype row, bool selected)
{
    if (row < 0 || row >= m_rows.size() || !m_rows.at(row).changed() || m_rows.at(row).selected == selected)
        return;
    m_rows[row].selected = selected;
    Q_EMIT rowsChanged();
}

void Review::selectAll(bool selected)
{
    for (ReviewRow &row : m_rows)
        row.selected = selected && row.changed();
    Q_EMIT rowsChanged();
}

qsizetype Review::selectedCount() const
{
    return std::ranges::count_if(m_rows, &ReviewRow::selected);
}

std::optional<SubtitleTrack> Review::track() const
{
    if (!m_trackID || !SessionTracks::isSelectable(m_session.state(), *m_trackID))
        return std::nullopt;
    return m_session.state().tracks->at(*SessionTracks::indexOf(m_session.state(), *m_trackID));
}

bool Review::isOutdated() const
{
    const auto now = track();
    return !now || !std::ranges::equal(now->items, m_rows, [](const Subtitle &cue, const ReviewRow &row) {
        return cue.id == row.before.id && cue.start == row.before.start && cue.end == row.before.end &&
               (cue.text == row.before.text || cue.text == row.after);
    });
}

void Review::apply()
{
    if (m_rows.isEmpty() || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    if (isOutdated()) {
        setStatus(u"字幕在校对后有改动，结果仅供对照，请重新校对"_s, true);
        return;
    }
    const QList<Subtitle> before = track()->items;
    const QList<Subtitle> after = ReviewRows::apply(m_rows);
    if (before == after) {
        setStatus(selectedCount() == 0 ? u"请先勾选要修改的字幕"_s : u"勾选的修改已在字幕中"_s, true);
        return;
    }
    m_applied = CueRestore{.track = *m_trackID, .before = before, .after = after};
    Q_EMIT aboutToApply();
    LintoraSession next = SessionTracks::selecting(m_session.state(), *m_trackID);
    next.items = after;
    m_session.replace(SessionTracks::committed(std::move(next)), u"AI 校对"_s);
    const QString status = u"已应用 %1 条修改，可撤销"_s.arg(selectedCount());
    setStatus(status);
    Q_EMIT done(status);
}

bool Review::canUndo() const
{
    return m_applied && !m_owner.isBusy() && m_session.isRestorable(*m_applied);
}

void Review::undo()
{
    if (!canUndo())
        return;
    m_session.restore(*m_applied);
    const QString status = u"已撤销，字幕恢复为应用前的内容"_s;
    setStatus(status);
    Q_EMIT done(status);
}

void Review::setStatus(const QString &status, bool isRefused)
{
    const bool wasRefused = std::exchange(m_isRefused, isRefused);
    if (std::exchange(m_status, status) != status || wasRefused != isRefused)
        Q_EMIT statusChanged();
}
