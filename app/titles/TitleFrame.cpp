#include "app/titles/TitleFrame.h"

#include <cmath>

namespace TitleFrame {

double emOf(const Options &options)
{
    return std::isfinite(options.fontSize) && options.fontSize > 0 ? options.fontSize : 0;
}

double titleSafeWidth(const Options &options)
{
    return static_cast<double>(options.width) * titleSafe;
}

} // namespace TitleFrame
