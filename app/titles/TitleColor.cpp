#include "app/titles/TitleColor.h"

#include "fcp/ColorText.h"

#include <QLocale>
#include <QStringList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace TitleColor {

std::optional<QColor> read(QStringView text)
{
    const auto channels = ColorText::read(text);
    if (!channels)
        return std::nullopt;
    const auto [red, green, blue, alpha] = *channels;
    return QColor::fromRgbF(float(red), float(green), float(blue), float(alpha));
}

QString write(const QColor &color)
{
    const auto decimal = [](float value) {
        return QString::number(std::round(static_cast<double>(value) * 10'000) / 10'000, 'f',
                               QLocale::FloatingPointShortest);
    };
    const QColor rgb = color.toRgb();
    return QStringList{decimal(rgb.redF()), decimal(rgb.greenF()), decimal(rgb.blueF()), decimal(rgb.alphaF())}.join(
        u' ');
}

} // namespace TitleColor
