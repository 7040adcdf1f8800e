#pragma once

#include "app/Lintora/look/FontSamples.h"

#include <QStyledItemDelegate>

/// A row of the font list: a star for favourites, the family's name in its own face, and the name that documents
/// hold.
class FontRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit FontRowDelegate(QObject *parent = nullptr);

    FontSamples &samples() { return m_samples; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    static QRect starIn(const QRect &row); ///< Where the star is, and is clicked.

Q_SIGNALS:
    void starClicked(const QModelIndex &index);

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    mutable FontSamples m_samples; ///< Painting asks for what is still to be drawn.
};
