#pragma once

#include "fcp/Options.h"

/// The document's frame as far as it bounds and measures titles.
namespace TitleFrame {

/// Parts of the frame's width and height, centred: what SMPTE ST 2046-1 lays down for 16:9.
constexpr double actionSafe = 0.93;
constexpr double titleSafe = 0.90;

/// The font size in pixels of the frame; 0 when it is none.
double emOf(const Options &options);

/// The title-safe width in pixels of the frame.
double titleSafeWidth(const Options &options);

} // namespace TitleFrame
