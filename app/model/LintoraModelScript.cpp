// Matching a transcript.

#include "app/model/LintoraModel.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

void LintoraModel::setScriptText(const QString &text)
{
    publish(m_script.text, text, &LintoraModel::scriptTextChanged);
}

void LintoraModel::matchScript()
{
    if (refuseWhileBusy(u"请等待当前任务完成后再匹配。"_s))
        return;
    if (m_script.text.trimmed().isEmpty()) {
        setScriptStatus(u"请先粘贴文稿正文"_s, true);
        return;
    }
    clearScriptRows();
    m_script.trackID = selectedTrackID();
    m_script.items = items();
    m_script.manuscript = m_script.text;
    m_match.run(
        u"正在匹配文稿…"_s,
        [text = m_script.text, cues = items()](Job &job, const ProgressReport & /*report*/) {
            return ScriptAlignment::match(text, cues, [&] { job.check(); });
        },
        [this](const ScriptMatchResult &result) { takeScriptResult(result); },
        [this](const Failure &failure) { setScriptStatus(failure.sentence, true); }, [this] { setScriptStatus({}); });
    setScriptStatus(u"正在匹配文稿…"_s);
}

void LintoraModel::takeScriptResult(const ScriptMatchResult &result)
{
    if (m_script.trackID != selectedTrackID() || m_script.items != items() || m_script.manuscript != m_script.text) {
        setScriptStatus(u"当前字幕或文稿已变化，请重新匹配"_s, true);
        return;
    }
    m_script.rows = result.rows;
    m_script.unmatched = result.unmatchedPassages;
    Q_EMIT scriptRowsChanged();
    if (result.changedCount() == 0)
        setScriptStatus(u"已匹配的文字与当前字幕一致，无需修改"_s);
    else
        setScriptStatus(u"已匹配 %1 条，%2 条有改动"_s.arg(result.matchedCount()).arg(result.changedCount()));
}

void LintoraModel::setScriptRowSelected(qsizetype row, bool selected)
{
    if (row < 0 || row >= m_script.rows.size() || m_script.rows.at(row).selected == selected)
        return;
    m_script.rows[row].selected = selected;
    Q_EMIT scriptRowsChanged();
}

void LintoraModel::applyScriptRows()
{
    if (m_script.rows.isEmpty() || refuseWhileBusy(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    if (m_script.trackID != selectedTrackID() || m_script.items != items()) {
        setScriptStatus(u"当前字幕或文稿已变化，请重新匹配"_s, true);
        clearScriptRows();
        return;
    }
    const auto applies = [](const ScriptMatchRow &row) { return row.selected && row.changed(); };
    const auto count = std::ranges::count_if(m_script.rows, applies);
    if (count == 0) {
        setScriptStatus(u"请先勾选要修改的字幕"_s, true);
        return;
    }
    const QList<Subtitle> after = ScriptAlignment::apply(m_script.rows);
    m_scriptMatch = Restore{.track = *selectedTrackID(), .before = items(), .after = after};
    clearScriptRows();
    // A transcript may touch every cue, and what it did badly is often seen days later only.
    keepSession(u"文稿匹配前_"_s);
    replaceItems(after, u"文稿匹配"_s);
    const QString status = u"已按文稿修改 %1 条字幕，可撤销修改"_s.arg(count);
    setScriptStatus(status);
    report(status);
}

bool LintoraModel::canUndoScriptMatch() const
{
    return isRestorable(m_scriptMatch);
}

void LintoraModel::undoScriptMatch()
{
    if (!canUndoScriptMatch())
        return;
    const QString status = u"已撤销，字幕恢复为匹配前内容"_s;
    restore(m_scriptMatch, status);
    setScriptStatus(status);
}

void LintoraModel::showScriptMatch()
{
    setScriptMatchPresented(true);
}

void LintoraModel::setScriptStatus(const QString &status, bool isRefused)
{
    const bool wasRefused = std::exchange(m_script.isRefused, isRefused);
    if (std::exchange(m_script.status, status) != status || wasRefused != isRefused)
        Q_EMIT scriptStatusChanged();
}

void LintoraModel::clearScriptRows()
{
    if (m_script.rows.isEmpty() && m_script.unmatched.isEmpty())
        return;
    m_script.rows.clear();
    m_script.unmatched.clear();
    Q_EMIT scriptRowsChanged();
}
