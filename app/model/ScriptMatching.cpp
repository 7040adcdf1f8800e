#include "app/model/ScriptMatching.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString outdated = u"当前字幕或文稿已变化，请重新匹配"_s;

} // namespace

ScriptMatching::ScriptMatching(EditedSession &session, CueOwnership &owner)
    : m_session(session)
    , m_owner(owner)
{}

void ScriptMatching::setText(const QString &text)
{
    if (std::exchange(m_text, text) != text)
        Q_EMIT textChanged();
}

void ScriptMatching::match()
{
    if (m_owner.refuses(u"请等待当前任务完成后再匹配。"_s))
        return;
    if (m_text.trimmed().isEmpty()) {
        setStatus(u"请先粘贴文稿正文"_s, true);
        return;
    }
    clearRows();
    m_question = {.trackID = m_session.state().selectedTrackID, .items = m_session.state().items, .text = m_text};
    m_task.run(
        u"正在匹配文稿…"_s,
        [question = m_question](Job &job, const ProgressReport & /*report*/) {
            return ScriptAlignment::match(question.text, question.items, [&] { job.check(); });
        },
        [this](const ScriptMatchResult &result) { takeResult(result); },
        [this](const Failure &failure) { setStatus(failure.sentence, true); }, [this] { setStatus({}); });
    setStatus(u"正在匹配文稿…"_s);
}

bool ScriptMatching::isAboutTheseCues() const
{
    return m_question.trackID == m_session.state().selectedTrackID && m_question.items == m_session.state().items;
}

void ScriptMatching::takeResult(const ScriptMatchResult &result)
{
    if (!isAboutTheseCues() || m_question.text != m_text) {
        setStatus(outdated, true);
        return;
    }
    m_proposed = result.rows;
    m_unmatched = result.unmatchedPassages;
    showProposed();
}

/// What is left alone is offered as matched and equal.
void ScriptMatching::showProposed()
{
    ScriptMatchResult shown{.rows = m_proposed, .unmatchedPassages = {}};
    if (m_leavesPunctuation) {
        for (ScriptMatchRow &row : shown.rows) {
            if (row.changed() && !ScriptAlignment::changesWords(row))
                row.replacement = row.original.text;
        }
    }
    m_rows = shown.rows;
    Q_EMIT rowsChanged();
    if (shown.changedCount() == 0)
        setStatus(u"已匹配的文字与当前字幕一致，无需修改"_s);
    else
        setStatus(u"已匹配 %1 条，%2 条有改动"_s.arg(shown.matchedCount()).arg(shown.changedCount()));
}

void ScriptMatching::setLeavesPunctuation(bool leaves)
{
    if (std::exchange(m_leavesPunctuation, leaves) != leaves && !m_proposed.isEmpty())
        showProposed();
}

void ScriptMatching::selectAll(bool selected)
{
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).changed())
            m_rows[i].selected = m_proposed[i].selected = selected;
    }
    Q_EMIT rowsChanged();
}

void ScriptMatching::setRowSelected(qsizetype row, bool selected)
{
    if (row < 0 || row >= m_rows.size() || m_rows.at(row).selected == selected)
        return;
    m_rows[row].selected = m_proposed[row].selected = selected;
    Q_EMIT rowsChanged();
}

void ScriptMatching::apply()
{
    if (m_rows.isEmpty() || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    if (!isAboutTheseCues()) {
        setStatus(outdated, true);
        clearRows();
        return;
    }
    const auto applies = [](const ScriptMatchRow &row) { return row.selected && row.changed(); };
    const auto count = std::ranges::count_if(m_rows, applies);
    if (count == 0) {
        setStatus(u"请先勾选要修改的字幕"_s, true);
        return;
    }
    const QList<Subtitle> after = ScriptAlignment::apply(m_rows);
    m_applied = CueRestore{.track = *m_question.trackID, .before = m_question.items, .after = after};
    clearRows();
    // A transcript may touch every cue, and what it did badly is often seen days later only.
    Q_EMIT aboutToApply();
    m_session.replaceItems(after, u"文稿匹配"_s);
    const QString status = u"已按文稿修改 %1 条字幕，可撤销修改"_s.arg(count);
    setStatus(status);
    Q_EMIT done(status);
}

bool ScriptMatching::canUndo() const
{
    return m_applied && !m_owner.isBusy() && m_session.isRestorable(*m_applied);
}

void ScriptMatching::undo()
{
    if (!canUndo())
        return;
    m_session.restore(*m_applied);
    const QString status = u"已撤销，字幕恢复为匹配前内容"_s;
    Q_EMIT done(status);
    setStatus(status);
}

void ScriptMatching::setStatus(const QString &status, bool isRefused)
{
    const bool wasRefused = std::exchange(m_isRefused, isRefused);
    if (std::exchange(m_status, status) != status || wasRefused != isRefused)
        Q_EMIT statusChanged();
}

void ScriptMatching::clearRows()
{
    if (m_rows.isEmpty() && m_unmatched.isEmpty())
        return;
    m_proposed.clear();
    m_rows.clear();
    m_unmatched.clear();
    Q_EMIT rowsChanged();
}
