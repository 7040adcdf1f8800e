#include "app/Lintora/tools/CueToolRows.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"

using namespace Qt::StringLiterals;

CueToolRows::CueToolRows(CueTools &tools, QObject *parent)
    : QAbstractListModel(parent)
    , m_tools(tools)
    , m_rows(tools.rows())
{
    connect(&tools, &CueTools::rowsChanged, this, [this] {
        beginResetModel();
        m_rows = m_tools.rows();
        endResetModel();
    });
    connect(&tools, &CueTools::selectionChanged, this, [this] {
        if (!m_rows.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
    });
}

qsizetype CueToolRows::cueOf(const QModelIndex &index) const
{
    return m_rows.at(index.row()).cue;
}

int CueToolRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant CueToolRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const CueProposal::Row &row = m_rows.at(index.row());
    if (role == Qt::CheckStateRole && row.isFixable)
        return m_tools.isSelected(index.row()) ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return u"%1\n↓\n%2"_s.arg(row.before, row.after);
    if (role != MarkedTextDelegate::comparedRole)
        return {};
    ComparedRow compared{.number = QString::number(row.cue + 1),
                         .before = row.before,
                         .after = row.after,
                         .beforeMarks = {},
                         .afterMarks = {},
                         .isRemark = row.rule.has_value()};
    if (!row.rule) {
        const TextDifference::Difference difference = TextDifference::between(row.before, row.after);
        compared.beforeMarks = difference.removed;
        compared.afterMarks = difference.added;
    }
    return QVariant::fromValue(compared);
}

bool CueToolRows::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole || !m_rows.at(index.row()).isFixable)
        return false;
    m_tools.setSelected(index.row(), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags CueToolRows::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren |
           (m_rows.at(index.row()).isFixable ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}
