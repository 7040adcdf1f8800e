#include "app/titles/TitleColor.h"

#include <QLocale>
#include <QStringList>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace TitleColor {

std::optional<QColor> read(QStringView text)
{
    const QList<QStringView> parts = text.split(u' ');
    if (parts.size() != 4)
        return std::nullopt;
    std::array<float, 4> channels{};
    for (size_t i = 0; i < channels.size(); ++i) {
        bool isNumber = false;
        const double value = parts[static_cast<qsizetype>(i)].toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value) || value < 0 || value > 1)
            return std::nullopt;
        channels[i] = static_cast<float>(value);
    }
    return QColor::fromRgbF(channels[0], channels[1], channels[2], channels[3]);
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
