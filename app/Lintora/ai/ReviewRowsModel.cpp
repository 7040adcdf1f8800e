#include "app/Lintora/ai/ReviewRowsModel.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"

#include <utility>

using namespace Qt::StringLiterals;

ReviewRowsModel::ReviewRowsModel(Review &review, QObject *parent)
    : QAbstractListModel(parent)
    , m_review(review)
    , m_shown(shown())
{
    connect(&review, &Review::rowsChanged, this, &ReviewRowsModel::follow);
}

QList<qsizetype> ReviewRowsModel::shown() const
{
    QList<qsizetype> rows;
    for (qsizetype i = 0; i < m_review.aiReviewRows().size(); ++i) {
        if (!m_showsOnlyChanged || m_review.aiReviewRows().at(i).changed())
            rows += i;
    }
    return rows;
}

/// A tick leaves the list where it is.
void ReviewRowsModel::follow()
{
    QList<qsizetype> now = shown();
    if (now == m_shown) {
        if (!now.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        return;
    }
    beginResetModel();
    m_shown = std::move(now);
    endResetModel();
}

void ReviewRowsModel::setShowsOnlyChanged(bool onlyChanged)
{
    m_showsOnlyChanged = onlyChanged;
    follow();
}

int ReviewRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

QVariant ReviewRowsModel::data(const QModelIndex &index, int role) const
{
    // Between a change of the review's rows and its signal, what is drawn may be gone.
    if (!index.isValid() || m_shown.at(index.row()) >= m_review.aiReviewRows().size())
        return {};
    const ReviewRow &row = m_review.aiReviewRows().at(m_shown.at(index.row()));
    const QString reason = ReviewRows::reason(row.risks);
    const QString texts = row.changed() ? u"%1\n↓\n%2"_s.arg(row.before.text, row.after) : row.before.text;
    switch (role) {
    case Qt::CheckStateRole:
        return row.changed() ? QVariant(row.selected ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::DisplayRole:
        return texts;
    case Qt::ToolTipRole:
        return reason.isEmpty() ? texts : u"请先确认：%1\n\n%2"_s.arg(reason, texts);
    case Qt::AccessibleTextRole:
        return u"%1 %2"_s.arg(row.before.id).arg(reason.isEmpty() ? texts : u"请先确认：%1 %2"_s.arg(reason, texts));
    case MarkedTextDelegate::comparedRole: {
        const TextDifference::Difference difference =
            row.changed() ? TextDifference::between(row.before.text, row.after) : TextDifference::Difference();
        return QVariant::fromValue(ComparedRow{.number = QString::number(row.before.id),
                                               .before = row.before.text,
                                               .after = row.changed() ? row.after : QString(),
                                               .beforeMarks = difference.removed,
                                               .afterMarks = difference.added,
                                               .warning = reason.isEmpty() ? QString() : u"请确认"_s});
    }
    default:
        return {};
    }
}

bool ReviewRowsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole)
        return false;
    m_review.setRowSelected(m_shown.at(index.row()), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ReviewRowsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const bool isTickable = index.data(Qt::CheckStateRole).isValid();
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren |
           (isTickable ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}
