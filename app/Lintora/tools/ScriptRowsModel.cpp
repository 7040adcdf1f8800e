#include "app/Lintora/tools/ScriptRowsModel.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ScriptRowsModel::ScriptRowsModel(ScriptMatching &matching, QObject *parent)
    : QAbstractListModel(parent)
    , m_matching(matching)
    , m_entries(entries())
{
    connect(&matching, &ScriptMatching::rowsChanged, this, &ScriptRowsModel::follow);
}

QList<ScriptRowsModel::Entry> ScriptRowsModel::entries() const
{
    const QList<ScriptMatchRow> &rows = m_matching.rows();
    if (rows.isEmpty())
        return {};
    QList<Entry> changes;
    QList<Entry> cues;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows.at(i).changed())
            changes += Entry{.kind = Kind::change, .index = i};
        else if (!rows.at(i).replacement)
            cues += Entry{.kind = Kind::cue, .index = i};
    }
    QList<Entry> all{Entry{.kind = Kind::changesHeading, .index = changes.size()}};
    all += changes;
    if (!cues.isEmpty()) {
        all += Entry{.kind = Kind::cuesHeading, .index = cues.size()};
        all += cues;
    }
    if (const qsizetype passages = m_matching.unmatched().size(); passages > 0) {
        all += Entry{.kind = Kind::passagesHeading, .index = passages};
        for (qsizetype i = 0; i < passages; ++i)
            all += Entry{.kind = Kind::passage, .index = i};
    }
    return all;
}

/// A tick leaves the list where it is.
void ScriptRowsModel::follow()
{
    const QList<Entry> now = entries();
    if (now == m_entries) {
        if (!now.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        return;
    }
    beginResetModel();
    m_entries = now;
    endResetModel();
}

qsizetype ScriptRowsModel::ticked() const
{
    return std::ranges::count_if(m_matching.rows(),
                                 [](const ScriptMatchRow &row) { return row.selected && row.changed(); });
}

int ScriptRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant ScriptRowsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Entry &entry = m_entries.at(index.row());
    // Between a change of the model's rows and its signal, what is drawn may be gone.
    const bool isPassage = entry.kind == Kind::passage;
    const bool isRow = entry.kind == Kind::change || entry.kind == Kind::cue;
    if ((isRow && entry.index >= m_matching.rows().size()) ||
        (isPassage && entry.index >= m_matching.unmatched().size()))
        return {};
    if (role == Qt::CheckStateRole && entry.kind == Kind::change)
        return m_matching.rows().at(entry.index).selected ? Qt::Checked : Qt::Unchecked;

    ComparedRow row;
    switch (entry.kind) {
    case Kind::changesHeading:
        row.kind = ComparedRow::Kind::heading;
        row.after = entry.index > 0 ? u"匹配后先查看对照。差异较大的内容默认不勾选，未匹配的字幕保留原文。"_s
                                    : u"已匹配的文字与当前字幕一致，无需修改"_s;
        break;
    case Kind::cuesHeading:
        row.kind = ComparedRow::Kind::heading;
        row.before = u"未匹配字幕 · %1"_s.arg(entry.index);
        row.after = u"以下字幕保留原文与时间。"_s;
        break;
    case Kind::passagesHeading:
        row.kind = ComparedRow::Kind::heading;
        row.before = u"未匹配的文稿 · %1"_s.arg(entry.index);
        row.after = u"这些内容暂不写入字幕，请确认是否在素材中说出。"_s;
        break;
    case Kind::passage:
        row.before = m_matching.unmatched().at(entry.index);
        break;
    case Kind::change:
    case Kind::cue: {
        const ScriptMatchRow &match = m_matching.rows().at(entry.index);
        row.number = QString::number(match.id + 1);
        row.before = match.original.text;
        row.after = match.replacement.value_or(QString());
        if (match.replacement && match.needsReview())
            row.warning = u"差异较大"_s;
        break;
    }
    }
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return row.before.isEmpty() || row.after.isEmpty() ? row.before + row.after
                                                           : u"%1\n↓\n%2"_s.arg(row.before, row.after);
    if (role != MarkedTextDelegate::comparedRole)
        return {};
    if (entry.kind == Kind::change) {
        const TextDifference::Difference difference = TextDifference::between(row.before, row.after);
        row.beforeMarks = difference.removed;
        row.afterMarks = difference.added;
    }
    return QVariant::fromValue(row);
}

bool ScriptRowsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole || m_entries.at(index.row()).kind != Kind::change)
        return false;
    m_matching.setRowSelected(m_entries.at(index.row()).index, value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ScriptRowsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const bool isChange = m_entries.at(index.row()).kind == Kind::change;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren |
           (isChange ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}
