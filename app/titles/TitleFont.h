#pragma once

#include "fcp/Options.h"

#include <QFont>

/// The font in which a title is set on this machine.
namespace TitleFont {

/// A font to measure and outline with, and what stands behind it.
struct Choice
{
    QFont font;                ///< `em` pixels high and unhinted; other families follow for characters that it lacks.
    QString family;            ///< The installed family.
    bool isSubstitute = false; ///< Whether the family asked for is not installed.
    bool isFaceSubstitute = false; ///< Whether the family has no face of the name asked for.
};

/// The size of `Choice::font` in pixels. Glyphs are scaled from here: most fonts are designed on a grid of this size,
/// so that nothing is rounded, whatever the size of the title or the picture.
constexpr int em = 1000;

/// The font of `options`. A family that is not installed gives way to a common Chinese one, a face that the family
/// lacks to the one nearest in weight and slope. Any thread.
Choice choose(const Options &options);

} // namespace TitleFont
