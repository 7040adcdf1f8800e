#include "app/Lintora/tools/ComparedRows.h"

using namespace Qt::StringLiterals;

void ComparedRows::setRows(const QList<ComparedRow> &rows)
{
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int ComparedRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ComparedRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    ComparedRow row = m_rows.at(index.row());
    const bool isComparison = row.kind == ComparedRow::Kind::comparison;
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return isComparison ? u"%1\n↓\n%2"_s.arg(row.before, row.after) : row.before + u'\n' + row.after;
    if (role != MarkedTextDelegate::comparedRole)
        return {};
    if (isComparison && !row.isRemark) {
        const TextDifference::Difference difference = TextDifference::between(row.before, row.after);
        row.beforeMarks = difference.removed;
        row.afterMarks = difference.added;
    }
    return QVariant::fromValue(row);
}
