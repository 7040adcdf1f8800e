#pragma once

#include "app/titles/TitleBackdrop.h"
#include "fcp/Options.h"

#include <QImage>
#include <QList>
#include <QRectF>

class TitleMeasure;

/// How Final Cut Pro will show a title, as nearly as another text engine can.
///
/// What the numbers of `Options` mean here, in pixels of the document's frame of width × height:
///
/// - one point of the font size is one pixel: 48 points in 2160 lines and 24 in 1080 look the same, which is what a
///   preset's scaling by the frame's height promises;
/// - the written position moves the title's origin from the middle of the frame to bottomPercent of the height above
///   the bottom edge. The origin is the middle of the last line's baseline; earlier lines stand above it, centred;
/// - the stroke is an outline of strokeWidth pixels outside the glyphs, with round joints;
/// - the shadow falls 2 pixels to the right and 2 down and is blurred as by a Gaussian whose standard deviation is half
///   of shadowBlur.
///
/// Text is trimmed as in a title document. Values that no document could be written with draw as much as makes sense:
/// without a size above 0 nothing, an unreadable colour as the one that Options begins with. Any thread.
namespace TitlePicture {

enum class Guides
{
    none,
    safeAreas ///< Frames around the action-safe area, dashed, and the title-safe area.
};

/// One line of the picture. All in pixels of the picture.
struct Line
{
    QString text;    ///< Without the blanks at which it was broken.
    double baseline; ///< From the top edge.
    double left;     ///< Where the first glyph's origin stands.
    double width;    ///< Advance width.
    QRectF ink;      ///< What the glyphs cover, without stroke and shadow; null for blanks.
};

/// Where everything stands in a picture. All in pixels of the picture.
struct Layout
{
    QSize size;                ///< Of the picture.
    double scale = 0;          ///< Pixels of the picture in a pixel of the frame.
    double em = 0;             ///< Font size.
    double stroke = 0;         ///< Width of the outline; 0 without one.
    QPointF shadow;            ///< Offset of the shadow.
    double sigma = 0;          ///< Standard deviation of its blur.
    QList<Line> lines;         ///< From top to bottom; none without text.
    QRectF ink;                ///< Of all lines.
    QRectF bounds;             ///< The ink with its stroke and shadow. May reach beyond the picture.
    QRectF safeArea;           ///< Title-safe.
    QString family;            ///< Of the font used.
    bool isSubstitute = false; ///< Whether that is another family than the one asked for.

    /// Whether a line of the text is wider than the title-safe width. `lines` then shows the breaks that would mend it;
    /// the title itself has only the line feeds of its text.
    bool wrapsBeyondSafeWidth = false;
};

/// The largest picture of the frame's aspect ratio within `size`, at least one pixel each way. Null when there is no
/// frame or no size.
QSize fittedSize(const Options &options, QSize size);

/// The width of the widest line of `text` in pixels of the frame. For many texts keep a TitleMeasure.
double widthOf(const QString &text, const Options &options);

Layout layout(const QString &text, const Options &options, QSize size);

/// The same with a measure made from these options, which saves looking up the font.
Layout layout(const QString &text, const Options &options, QSize size, TitleMeasure &measure);

/// The picture, as large as fittedSize says, in the format ARGB32_Premultiplied. Null where that is null.
QImage draw(const QString &text, const Options &options, QSize size, const TitleBackdrop &backdrop,
            Guides guides = Guides::none);

/// The same into `canvas`, which is kept when its size is right: fresh memory for a large picture costs as much as the
/// title. `measure` must have been made from these options.
void drawInto(QImage &canvas, const QString &text, const Options &options, QSize size, const TitleBackdrop &backdrop,
              Guides guides, TitleMeasure &measure);

} // namespace TitlePicture
