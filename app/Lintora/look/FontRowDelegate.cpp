#include "app/Lintora/look/FontRowDelegate.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/look/FontListModel.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int rowHeight = 9 * VELTheme::step;
constexpr int sampleSize = 18;

} // namespace

FontRowDelegate::FontRowDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{}

QRect FontRowDelegate::starIn(const QRect &row)
{
    return {row.left() + VELTheme::step, row.top() + (row.height() - 6 * VELTheme::step) / 2, 6 * VELTheme::step,
            6 * VELTheme::step};
}

QSize FontRowDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    return {0, rowHeight};
}

void FontRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const VELTheme::Colors &colors = VELTheme::colors(*option.widget);
    const QRect row = option.rect;
    if (option.state & QStyle::State_Selected)
        painter->fillRect(row, colors.selection);
    const bool isFavorite = index.data(FontListModel::favoriteRole).toBool();
    const VELTheme::Glyph star = isFavorite ? VELTheme::Glyph::starred : VELTheme::Glyph::star;
    const QRect place = starIn(row).adjusted(4, 4, -4, -4);
    if (isFavorite || option.state & (QStyle::State_MouseOver | QStyle::State_Selected))
        VELTheme::paint(*painter, star, place, isFavorite ? colors.accent : colors.secondary);

    QRect room = row.adjusted(starIn(row).right() + 1 - row.left() + VELTheme::step, 0, -VELTheme::gap, 0);
    const QString name = index.data(Qt::DisplayRole).toString();
    const QString family = index.data(FontListModel::familyRole).toString();
    QStringList asides;
    if (family != name)
        asides += family;
    if (index.data(FontListModel::recentRole).toBool())
        asides += u"最近"_s;
    const QString aside = asides.join(u" · "_s);
    painter->setFont(VELTheme::smallFont());
    const QFontMetrics small(VELTheme::smallFont());
    const QString shown = small.elidedText(aside, Qt::ElideMiddle, room.width() * 2 / 5);
    painter->setPen(colors.secondary);
    painter->drawText(room, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    room.setRight(room.right() - small.horizontalAdvance(shown) - 3 * VELTheme::step);

    const FontSamples::Look look{
        .pixels = sampleSize, .color = colors.text, .ratio = option.widget->devicePixelRatioF()};
    if (const QImage *const sample = m_samples.sample(family, name, look)) {
        const QSize size = sample->deviceIndependentSize().toSize();
        const QPoint corner(room.left(), row.top() + (row.height() - size.height()) / 2);
        painter->save();
        painter->setClipRect(room);
        painter->drawImage(corner, *sample);
        painter->restore();
    } else {
        painter->setFont(VELTheme::textFont());
        painter->drawText(room, Qt::AlignVCenter | Qt::TextSingleLine, name);
    }
}

bool FontRowDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                  const QModelIndex &index)
{
    const bool isClick = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (isClick && starIn(option.rect).contains(static_cast<const QMouseEvent &>(*event).position().toPoint())) {
        Q_EMIT starClicked(index);
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}
