#pragma once

#include "app/fonts/FontFamily.h"

#include <QList>

/// Fonts that are not there.
namespace SyntheticFonts {

/// `count` families with different names, like those that foundries sell: "方正兰亭黑体 12" is "Fangzheng Lanting Heiti
/// 12". A third has no Chinese name. The same for the same count.
QList<FontFamily> families(qsizetype count);

} // namespace SyntheticFonts
