#pragma once

#include <QColor>
#include <QString>

#include <optional>

/// Colours as a title document writes them ("1 1 1 0.5") and as a screen shows them.
namespace TitleColor {

/// Absent where ColorText::read() has nothing.
std::optional<QColor> read(QStringView text);

/// The text of `color`, at most four places behind the point: it reads back as the same colour in 8 bits a channel.
QString write(const QColor &color);

} // namespace TitleColor
