#include "app/Lintora/cues/CueCellDelegate.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/CueTableModel.h"

#include <QPainter>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace {

/// The lines of a cue one behind the other, with a sign for each break.
QString onOneLine(const QString &text)
{
    QString line = text;
    return line.replace(u'\n', u" ↵ "_s);
}

void paintText(QPainter &painter, const QStyleOptionViewItem &option, const QRect &room, const QString &text,
               Qt::Alignment alignment)
{
    // No glyph of the fonts in use is much wider than the font is high: short texts need not be measured.
    const bool fits = text.size() * option.fontMetrics.height() <= room.width();
    const QString shown = fits ? text : option.fontMetrics.elidedText(text, Qt::ElideRight, room.width());
    painter.drawText(room, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

/// A small triangle at the row's beginning.
void paintWarning(QPainter &painter, const QRect &cell, const QColor &colour)
{
    constexpr double side = 8;
    const QPointF corner(cell.left() + VELTheme::step + 2, cell.center().y() + side / 2);
    QPainterPath triangle(corner);
    triangle.lineTo(corner + QPointF(side, 0));
    triangle.lineTo(corner + QPointF(side / 2, -side + 0.5));
    triangle.closeSubpath();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(triangle, colour);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

/// A ring in the same place; full when the cue is ticked.
void paintSuspect(QPainter &painter, const QRect &cell, const QColor &colour, bool isTicked)
{
    constexpr double radius = 3.5;
    const QPointF centre(cell.left() + VELTheme::step + 6, cell.center().y() + 0.5);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1.5));
    painter.setBrush(isTicked ? QBrush(colour) : QBrush(Qt::NoBrush));
    painter.drawEllipse(centre, radius, radius);
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace

void CueCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const VELTheme::Colors &colors = VELTheme::colors(*option.widget);
    const QRect cell = option.rect;
    if (option.state & QStyle::State_Selected)
        painter->fillRect(cell, colors.selection);
    else
        painter->fillRect(cell.left(), cell.bottom(), cell.width(), 1, colors.border);

    const QRect room = cell.adjusted(padding, 0, -padding, 0);
    painter->setFont(option.font);
    switch (index.column()) {
    case CueTableModel::numberColumn:
        if (index.data(CueTableModel::suspectRole).toBool())
            paintSuspect(*painter, cell, colors.failure, index.data(CueTableModel::tickedRole).toBool());
        else if (!index.data(CueTableModel::warningsRole).toStringList().isEmpty())
            paintWarning(*painter, cell, colors.warning);
        painter->setPen(colors.secondary);
        paintText(*painter, option, room, index.data(Qt::AccessibleTextRole).toString(), Qt::AlignRight);
        break;
    case CueTableModel::textColumn:
        painter->setPen(colors.text);
        paintText(*painter, option, room, onOneLine(index.data().toString()), Qt::AlignLeft);
        break;
    default:
        painter->setPen(option.state & QStyle::State_Selected ? colors.text : colors.secondary);
        paintText(*painter, option, room, index.data().toString(), Qt::AlignLeft);
    }

    if (option.state & QStyle::State_HasFocus) {
        painter->setPen(colors.accent);
        painter->drawRect(cell.adjusted(0, 0, -1, -1));
    }
}

QSize CueCellDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    return {0, VELTheme::rowHeight};
}
