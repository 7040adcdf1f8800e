#pragma once

#include <QStyledItemDelegate>

/// Draws the cells of the cue table: one line each, whatever the text holds.
class CueCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    static constexpr int padding = 6; ///< Between a cell's edge and its text, in points.
};
