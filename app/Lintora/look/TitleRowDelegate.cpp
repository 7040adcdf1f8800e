#include "app/Lintora/look/TitleRowDelegate.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/look/TitleListModel.h"

#include <QPainter>

namespace {

constexpr int titleRowHeight = 12 * VELTheme::step;

} // namespace

QSize TitleRowDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    return {0, titleRowHeight};
}

void TitleRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const VELTheme::Colors &colors = VELTheme::colors(*option.widget);
    if (option.state & QStyle::State_Selected)
        painter->fillRect(option.rect, colors.selection);
    else if (option.state & QStyle::State_MouseOver)
        painter->fillRect(option.rect, colors.hovered);
    const QRect room = option.rect.adjusted(VELTheme::gap, VELTheme::step, -VELTheme::gap, -VELTheme::step);
    const QRect above(room.left(), room.top(), room.width(), room.height() * 11 / 20);
    const QRect below(room.left(), above.bottom() + 1, room.width(), room.height() - above.height());
    const auto line = [&](const QRect &place, const QFont &font, const QColor &color, int role) {
        painter->setFont(font);
        painter->setPen(color);
        const QString text = index.data(role).toString();
        painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(text, Qt::ElideRight, place.width()));
    };
    line(above, VELTheme::textFont(), colors.text, Qt::DisplayRole);
    line(below, VELTheme::smallFont(), colors.secondary, TitleListModel::asideRole);
}
