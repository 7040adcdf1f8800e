#include "app/Lintora/look/PresetDelegate.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/look/PresetListModel.h"
#include "app/titles/TitlePicture.h"
#include "fcp/titles/TitleLooks.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize pictureSize(24 * VELTheme::step, 13 * VELTheme::step);
constexpr int nameHeight = 5 * VELTheme::step;
constexpr int padding = VELTheme::step;
constexpr int mostThumbnails = 200;

/// The style close up: in a whole frame a title is too small to tell one from another.
Options closeUp(const Options &style)
{
    Options shown = style;
    shown.height = qMax(qint64(1), qint64(style.fontSize * 2.4));
    shown.width = shown.height * pictureSize.width() / pictureSize.height();
    shown.bottomPercent = 34;
    return shown;
}

} // namespace

QSize PresetDelegate::cellSize()
{
    return pictureSize + QSize(2 * padding, 2 * padding + nameHeight);
}

QSize PresetDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    return cellSize();
}

const QImage &PresetDelegate::thumbnail(const SubtitleStylePreset &preset, double ratio) const
{
    const auto known = m_thumbnails.constFind(preset.id);
    const Options style = preset.look ? TitleLooks::drawn(*preset.look, preset.style) : preset.style;
    if (known != m_thumbnails.constEnd() && known->style == style && known->ratio == ratio)
        return known->image;
    if (m_thumbnails.size() > mostThumbnails)
        m_thumbnails.clear();
    QImage image = TitlePicture::draw(u"字幕"_s, closeUp(style), (QSizeF(pictureSize) * ratio).toSize(),
                                      {.kind = TitleBackdrop::Kind::greys});
    image.setDevicePixelRatio(ratio);
    return m_thumbnails.insert(preset.id, {.style = style, .ratio = ratio, .image = image})->image;
}

void PresetDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const VELTheme::Colors &colors = VELTheme::colors(*option.widget);
    const auto &presets = static_cast<const PresetListModel &>(*index.model());
    const QRect cell({option.rect.topLeft()}, cellSize());
    const bool isSelected = option.state & QStyle::State_Selected;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (isSelected || option.state & QStyle::State_MouseOver) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(isSelected ? colors.selection : colors.hovered);
        painter->drawRoundedRect(cell, VELTheme::radius, VELTheme::radius);
    }
    const QRect picture(cell.topLeft() + QPoint(padding, padding), pictureSize);
    painter->drawImage(picture.topLeft(), thumbnail(presets.preset(index), option.widget->devicePixelRatioF()));
    painter->setBrush(Qt::NoBrush);
    painter->setPen(colors.border);
    painter->drawRect(QRectF(picture).adjusted(0.5, 0.5, -0.5, -0.5));
    const QRect name(picture.left(), picture.bottom() + 1, picture.width(), nameHeight + padding / 2);
    painter->setFont(VELTheme::smallFont());
    painter->setPen(colors.text);
    const QString text = index.data(Qt::DisplayRole).toString();
    painter->drawText(name, Qt::AlignCenter | Qt::TextSingleLine,
                      QFontMetrics(VELTheme::smallFont()).elidedText(text, Qt::ElideRight, name.width()));
    painter->restore();
}
