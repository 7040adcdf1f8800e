#include "app/Lintora/controls/Theme.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using VELTheme::Appearance;
using VELTheme::Colors;

double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Theme, text_can_be_read_on_every_ground)
{
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        const Colors &colors = VELTheme::colors(appearance);
        const QColor grounds[] = {colors.window, colors.surface, colors.raised, colors.hovered, colors.selection};
        for (const QColor &ground : grounds) {
            for (const QColor &text : {colors.text, colors.secondary})
                EXPECT_GE(contrast(text, ground), 4.5)
                    << qPrintable(text.name()) << " on " << qPrintable(ground.name());
        }
        for (const QColor &ground : {colors.window, colors.surface}) {
            for (const QColor &text : {colors.failure, colors.warning, colors.accent})
                EXPECT_GE(contrast(text, ground), 4.5)
                    << qPrintable(text.name()) << " on " << qPrintable(ground.name());
        }
        EXPECT_GE(contrast(colors.onAccent, colors.accent), 4.5);
        EXPECT_GE(contrast(colors.text, colors.removed), 4.5);
        EXPECT_GE(contrast(colors.text, colors.added), 4.5);
        EXPECT_GE(contrast(colors.accent, colors.window), 3); // a focus ring
    }
}

} // namespace
