#pragma once

#include <QImage>

class QPainter;

/// What stands behind a title in its picture.
struct TitleBackdrop
{
    enum class Kind
    {
        transparent,
        black,
        white,
        greys, ///< A ramp from black at the left to white at the right: shows where a title would be lost.
        still, ///< A picture of the user's, scaled to fill the frame and cut at the edges that stand over.
    };

    Kind kind = Kind::black;
    QImage still = {}; ///< Of the kind `still`; a null image is drawn as black.

    friend bool operator==(const TitleBackdrop &, const TitleBackdrop &) = default;
};

namespace TitleBackdrops {

/// The backdrop with its still cut and scaled to `size` pixels. Scaling a large photograph takes ten times as long as
/// drawing a title: whoever draws again and again does it once, with TitlePicture::fittedSize.
TitleBackdrop fitted(const TitleBackdrop &backdrop, QSize size);

/// Covers all of `canvas`, which must be of the format ARGB32_Premultiplied.
void draw(const TitleBackdrop &backdrop, QImage &canvas);

} // namespace TitleBackdrops
