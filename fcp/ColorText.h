#pragma once

#include <QStringView>

#include <array>
#include <optional>

/// Colours as a title document and the records have them: "1 1 1 0.5".
namespace ColorText {

/// Red, green, blue and alpha, from 0 to 1.
using Channels = std::array<double, 4>;

/// Absent unless `text` is four finite numbers from 0 to 1 with single blanks between them, and nothing else.
std::optional<Channels> read(QStringView text);

} // namespace ColorText
