#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QPalette>

#include <optional>

class QWidget;

/// The look of the window: colours, sizes and fonts, in one place.
///
/// A window and all in it are light or dark together; who draws by hand asks for the colours that go with a widget.
namespace VELTheme {

enum class Appearance
{
    light,
    dark
};

struct Colors
{
    QColor window;  ///< Behind everything.
    QColor surface; ///< Behind text that is edited, and lists.
    QColor raised;  ///< Buttons.
    QColor hovered; ///< Buttons under the pointer.
    QColor border;  ///< Between surfaces.
    QColor outline; ///< Around controls.
    QColor text;
    QColor secondary; ///< Text of less weight.
    QColor disabled;  ///< Text that cannot be acted on.
    QColor accent;    ///< What is active, and focus rings.
    QColor onAccent;  ///< Text on `accent`.
    QColor selection; ///< Behind selected rows.
    QColor failure;
    QColor warning;
    QColor ready;   ///< What can be worked with.
    QColor removed; ///< Behind characters that go.
    QColor added;   ///< Behind characters that come.
    QColor scrim;   ///< Over what lies behind a sheet.
};

const Colors &colors(Appearance appearance);
const Colors &colors(const QWidget &widget); ///< Those of the appearance that the widget has.

/// What the system shows now.
Appearance systemAppearance();

/// Gives `window` and all in it the look of the system's appearance, and follows when that changes.
void configure(QWidget &window);

/// Gives `window`, which is configured, the appearance that a person has chosen, until they choose another; where
/// absent, the system's again.
void choose(QWidget &window, std::optional<Appearance> choice);

/// The same in a certain appearance, whatever the system's.
void setAppearance(QWidget &window, Appearance appearance);

// Sizes, in points on a grid of four.

constexpr int step = 4;
constexpr int gap = 2 * step;           ///< Between neighbours.
constexpr int margin = 4 * step;        ///< Between content and the window's edge.
constexpr int controlHeight = 7 * step; ///< Of buttons and fields.
constexpr int rowHeight = 7 * step;     ///< Of table rows.
constexpr int radius = 6;
constexpr int iconSize = 4 * step;

// Fonts: two text sizes and one heading size.

QFont textFont();
QFont smallFont();
QFont headingFont();
QFont figureFont(); ///< Text size, with figures of one width.

enum class Glyph
{
    plus,
    gear,
    undo,
    pin,
    close,
    search,
    copy,
    more,
    star,    ///< Hollow.
    starred, ///< Filled.
    check,
    waiting,   ///< Three dots.
    alert,     ///< An exclamation mark.
    inspector, ///< A window with its lower part marked.
    play,
    stop, ///< Two bars: it goes on from there.
    loop,
    sound, ///< Bars of different heights.
};

/// The sign in the colours of `widget`, whatever becomes of its appearance.
QIcon icon(Glyph glyph, const QWidget &widget);

/// The same painted, in `colour`, into `rectangle`.
void paint(QPainter &painter, Glyph glyph, const QRectF &rectangle, const QColor &colour);

} // namespace VELTheme
