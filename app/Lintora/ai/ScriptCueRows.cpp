#include "app/Lintora/ai/ScriptCueRows.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "core/SRT.h"

using namespace Qt::StringLiterals;

namespace {

QString place(const Subtitle &cue)
{
    return u"%1 – %2"_s.arg(SRT::stamp(cue.start), SRT::stamp(cue.end));
}

ComparedRow heading(const QString &title, qsizetype count, const QString &remark)
{
    return {.kind = ComparedRow::Kind::heading, .before = u"%1 · %2"_s.arg(title).arg(count), .after = remark};
}

ComparedRow rowOf(const TimedCue &timed)
{
    return {.kind = ComparedRow::Kind::noted,
            .number = QString::number(timed.cue.id),
            .before = timed.cue.text,
            .after = u"%1 · 可信度 %2%"_s.arg(place(timed.cue)).arg(qRound(timed.confidence * 100)),
            .warning = timed.isUnsure ? u"请核对"_s : QString()};
}

ComparedRow rowOf(const UnspokenPassage &passage)
{
    return {.kind = ComparedRow::Kind::noted,
            .number = u"−"_s,
            .before = passage.text,
            .after = u"自第 %1 条"_s.arg(passage.cueID)};
}

ComparedRow rowOf(const Subtitle &unscripted)
{
    return {.kind = ComparedRow::Kind::noted, .number = u"+"_s, .before = unscripted.text, .after = place(unscripted)};
}

} // namespace

ScriptCueRows::ScriptCueRows(ScriptSpeech &speech, QObject *parent)
    : QAbstractListModel(parent)
    , m_speech(speech)
{
    connect(&speech, &ScriptSpeech::resultChanged, this, &ScriptCueRows::follow);
    follow();
}

/// A result that is being worked out anew leaves the list where it is.
void ScriptCueRows::follow()
{
    if (m_result == m_speech.result())
        return;
    beginResetModel();
    m_result = m_speech.result();
    m_showsOnlyUnsure = m_showsOnlyUnsure && m_result.unsureCount() > 0;
    m_entries.clear();
    append(Kind::unspokenHeading, Kind::unspoken, m_result.unspoken.size());
    append(Kind::unscriptedHeading, Kind::unscripted, m_result.unscripted.size());
    append(Kind::cuesHeading, Kind::cue, m_result.cues.size());
    endResetModel();
}

void ScriptCueRows::append(Kind heading, Kind kind, qsizetype count)
{
    if (count > 0)
        m_entries.append({.kind = heading, .index = count});
    for (qsizetype i = 0; i < count; ++i) {
        if (kind != Kind::cue || !m_showsOnlyUnsure || m_result.cues.at(i).isUnsure)
            m_entries.append({.kind = kind, .index = i});
    }
}

void ScriptCueRows::setShowsOnlyUnsure(bool onlyUnsure)
{
    if (m_showsOnlyUnsure == onlyUnsure)
        return;
    beginResetModel();
    m_showsOnlyUnsure = onlyUnsure;
    m_entries.removeIf([](const Entry &entry) { return entry.kind == Kind::cuesHeading || entry.kind == Kind::cue; });
    append(Kind::cuesHeading, Kind::cue, m_result.cues.size());
    endResetModel();
}

int ScriptCueRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant ScriptCueRows::data(const QModelIndex &index, int role) const
{
    const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole || role == Qt::AccessibleTextRole;
    if (!index.isValid() || (!isText && role != MarkedTextDelegate::comparedRole))
        return {};
    const Entry &entry = m_entries.at(index.row());
    ComparedRow row;
    switch (entry.kind) {
    case Kind::unspokenHeading:
        row = heading(u"文稿中未听到"_s, entry.index, u"请确认是否说过；这些字幕的时间由前后推算。"_s);
        break;
    case Kind::unscriptedHeading:
        row = heading(u"文稿外的内容"_s, entry.index, u"声音里有，文稿里没有，不写入字幕。"_s);
        break;
    case Kind::cuesHeading:
        row = heading(u"字幕"_s, entry.index,
                      m_result.unsureCount() == 0
                          ? u"文字与文稿一字不差，时间取自 %1。"_s.arg(m_speech.source())
                          : u"其中 %1 条时间待核对，应用后会标出。"_s.arg(m_result.unsureCount()));
        break;
    case Kind::unspoken:
        row = rowOf(m_result.unspoken.at(entry.index));
        break;
    case Kind::unscripted:
        row = rowOf(m_result.unscripted.at(entry.index));
        break;
    case Kind::cue:
        row = rowOf(m_result.cues.at(entry.index));
        break;
    }
    if (!isText)
        return QVariant::fromValue(row);
    const QString text = row.before + u'\n' + row.after;
    return row.warning.isEmpty() ? text : u"%1\n%2"_s.arg(text, row.warning);
}

Qt::ItemFlags ScriptCueRows::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren : Qt::NoItemFlags;
}
