#pragma once

#include "fcp/Options.h"

#include <QHash>
#include <QImage>
#include <QStyledItemDelegate>
#include <QUuid>

struct SubtitleStylePreset;

/// A preset as a picture of its letters, with its name below.
class PresetDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    static QSize cellSize();

private:
    struct Thumbnail
    {
        Options style;
        double ratio; ///< Device pixels in a pixel.
        QImage image;
    };

    const QImage &thumbnail(const SubtitleStylePreset &preset, double ratio) const;

    mutable QHash<QUuid, Thumbnail> m_thumbnails; ///< Drawn when they are painted first.
};
