#include "app/Lintora/controls/Theme.h"

#include "app/platform/Platform.h"

#include <QApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace VELTheme {

namespace {

const Colors lightColors = {.window = 0xf4f4f6,
                            .surface = 0xffffff,
                            .raised = 0xffffff,
                            .hovered = 0xe9e9ee,
                            .border = 0xdcdce1,
                            .outline = 0xb9b9c2,
                            .text = 0x1c1c1f,
                            .secondary = 0x5a5a63,
                            .disabled = 0x9a9aa3,
                            .accent = 0x0b5fcc,
                            .onAccent = 0xffffff,
                            .selection = 0xd7e6fb,
                            .failure = 0xb3261e,
                            .warning = 0x9a5b00,
                            .ready = 0x2e7d4f,
                            .removed = 0xffd9d5,
                            .added = 0xcdeed3,
                            .scrim = QColor(0, 0, 0, 70)};

const Colors darkColors = {.window = 0x1f1f22,
                           .surface = 0x18181a,
                           .raised = 0x323237,
                           .hovered = 0x3e3e45,
                           .border = 0x38383d,
                           .outline = 0x5b5b64,
                           .text = 0xf1f1f4,
                           .secondary = 0xa9a9b3,
                           .disabled = 0x6d6d76,
                           .accent = 0x6aa9ff,
                           .onAccent = 0x0e1c30,
                           .selection = 0x24405f,
                           .failure = 0xff8a80,
                           .warning = 0xf0b357,
                           .ready = 0x5fbf87,
                           .removed = 0x6b2b2a,
                           .added = 0x22543a,
                           .scrim = QColor(0, 0, 0, 130)};

constexpr auto appearanceProperty = "velAppearance";
constexpr auto chosenProperty = "velAppearanceChosen";

Appearance appearanceOf(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128 ? Appearance::dark : Appearance::light;
}

/// Without the colour of windows: that stays the system's, and tells whether it is light or dark.
QPalette paletteOf(const Colors &colors)
{
    QPalette palette;
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.surface);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::Button, colors.raised);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::BrightText, colors.failure);
    palette.setColor(QPalette::ToolTipBase, colors.raised);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.secondary);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, colors.onAccent);
    palette.setColor(QPalette::Link, colors.accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    return palette;
}

/// `%name%` in `rules` becomes the colour of that name.
QString withColors(QString rules, const Colors &colors)
{
    const std::pair<QString, QColor> names[] = {
        {u"%window%"_s, colors.window},       {u"%surface%"_s, colors.surface},     {u"%raised%"_s, colors.raised},
        {u"%hovered%"_s, colors.hovered},     {u"%border%"_s, colors.border},       {u"%outline%"_s, colors.outline},
        {u"%text%"_s, colors.text},           {u"%secondary%"_s, colors.secondary}, {u"%disabled%"_s, colors.disabled},
        {u"%accent%"_s, colors.accent},       {u"%onAccent%"_s, colors.onAccent},   {u"%failure%"_s, colors.failure},
        {u"%selection%"_s, colors.selection},
    };
    for (const auto &[name, colour] : names)
        rules.replace(name, colour.name());
    return rules;
}

/// Every control has a border of two points' room, so that the focus ring moves nothing.
QString styleSheet(const Colors &colors)
{
    static const QString rules = uR"(
LintoraPanel { background: %window%; }
QLabel { color: %text%; }
QPushButton, QToolButton {
    background: %raised%; color: %text%; border: 1px solid %outline%; border-radius: 6px;
    padding: 0 11px; min-height: 26px; max-height: 26px;
}
QToolButton { padding: 0 5px; min-width: 16px; }
QPushButton:hover, QToolButton:hover { background: %hovered%; }
QPushButton:pressed, QToolButton:pressed, QToolButton:open { background: %border%; }
QPushButton:checked, QToolButton:checked { border-color: %accent%; color: %accent%; }
QPushButton:focus, QToolButton:focus { outline: 0; border: 2px solid %accent%; padding: 0 10px; min-height: 24px; max-height: 24px; }
QToolButton:focus { padding: 0 4px; }
QPushButton:disabled, QToolButton:disabled { color: %disabled%; background: transparent; border-color: %border%; }
QPushButton[primary="true"] { background: %accent%; color: %onAccent%; border-color: %accent%; }
QPushButton[primary="true"]:focus { border: 2px solid %text%; }
QPushButton[primary="true"]:disabled { background: transparent; color: %disabled%; border-color: %border%; }
QPushButton[quiet="true"], QToolButton[quiet="true"] { background: transparent; border-color: transparent; }
QPushButton[quiet="true"]:hover, QToolButton[quiet="true"]:hover { background: %hovered%; }
QPushButton[quiet="true"]:checked { color: %accent%; background: %selection%; }
QPushButton[tight="true"] { padding: 0 5px; }
QPushButton[tight="true"]:focus { padding: 0 4px; }
QPushButton[quiet="true"]:focus, QToolButton[quiet="true"]:focus { border: 2px solid %accent%; }
QPushButton::menu-indicator, QToolButton[popupMode="2"]::menu-indicator { image: none; width: 0; }
QToolButton::menu-button { border: none; border-left: 1px solid %border%; width: 16px; }
QToolButton[quiet="true"]::menu-button { border-left-color: transparent; }
QToolButton[popupMode="1"] { padding-right: 20px; }
QLineEdit, QPlainTextEdit {
    background: %surface%; color: %text%; border: 1px solid %outline%; border-radius: 6px;
    selection-background-color: %selection%; selection-color: %text%;
}
QLineEdit { padding: 0 7px; min-height: 26px; max-height: 26px; }
QLineEdit:focus { border: 2px solid %accent%; padding: 0 6px; min-height: 24px; max-height: 24px; }
QPlainTextEdit { padding: 3px; }
QPlainTextEdit:focus { border: 2px solid %accent%; padding: 2px; }
QLineEdit:disabled { color: %disabled%; background: transparent; border-color: %border%; }
QLineEdit[invalid="true"] { border: 2px solid %failure%; padding: 0 6px; min-height: 24px; max-height: 24px; }
QLineEdit[cell="true"] { border-radius: 2px; padding: 0 4px; min-height: 0; max-height: 1000px; }
QPlainTextEdit[cell="true"] { border: 2px solid %accent%; border-radius: 2px; padding: 0; }
QAbstractItemView { background: %surface%; color: %text%; border: 1px solid %border%; border-radius: 6px; outline: 0; }
QAbstractItemView:focus { border: 1px solid %accent%; }
QTabBar { background: transparent; }
QTabBar::tab { color: %secondary%; background: transparent; border: 2px solid transparent; padding: 2px 8px;
    min-height: 22px; }
QTabBar::tab:hover { color: %text%; }
QTabBar::tab:selected { color: %text%; border-bottom-color: %accent%; }
QTabBar::tab:selected:focus { border-color: %accent%; border-radius: 6px; }
QHeaderView { background: %surface%; border: none; }
QHeaderView::section { background: %surface%; color: %secondary%; border: none; border-bottom: 1px solid %border%;
    padding: 0 6px; }
QTableCornerButton::section { background: %surface%; border: none; }
QScrollBar:vertical { background: transparent; width: 10px; margin: 2px; }
QScrollBar:horizontal { background: transparent; height: 10px; margin: 2px; }
QScrollBar::handle { background: %outline%; border-radius: 3px; min-height: 24px; min-width: 24px; }
QScrollBar::handle:hover { background: %secondary%; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QMenu { background: %raised%; color: %text%; border: 1px solid %outline%; padding: 4px 0; }
QMenu::item { padding: 4px 24px 4px 16px; }
QMenu::item:selected { background: %selection%; color: %text%; }
QMenu::item:disabled { color: %disabled%; }
QMenu::separator { height: 1px; background: %border%; margin: 4px 0; }
QToolTip { background: %raised%; color: %text%; border: 1px solid %outline%; padding: 4px; }
QLabel[secondary="true"] { color: %secondary%; }
QLabel[failure="true"] { color: %failure%; }
QLabel:disabled { color: %disabled%; }
QLabel[link="true"] { color: %accent%; }
QProgressBar { background: %border%; border: none; border-radius: 2px; min-height: 4px; max-height: 4px; }
QProgressBar::chunk { background: %accent%; border-radius: 2px; }
QFrame[rule="true"] { background: %border%; border: none; max-height: 1px; min-height: 1px; }
QFrame[sheet="true"] { background: %window%; border: 1px solid %outline%; border-radius: 8px; }
)"_s;
    return withColors(rules, colors);
}

/// Gives a window the system's appearance again when that changes.
class Follower : public QObject
{
public:
    explicit Follower(QWidget &window)
        : QObject(&window)
        , m_window(window)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp &&
            !m_window.property(chosenProperty).toBool() && m_system != systemAppearance()) {
            m_system = systemAppearance();
            setAppearance(m_window, m_system);
        }
        return false;
    }

private:
    QWidget &m_window;
    Appearance m_system = systemAppearance(); ///< As it was last.
};

QFont fontOfSize(int pixels)
{
    static const QFont system = QApplication::font();
    QFont font = system;
    static const QString family = Platform::interfaceFamily();
    if (!family.isEmpty())
        font.setFamily(family);
    font.setPixelSize(pixels);
    return font;
}

} // namespace

const Colors &colors(Appearance appearance)
{
    return appearance == Appearance::dark ? darkColors : lightColors;
}

const Colors &colors(const QWidget &widget)
{
    // A style sheet leaves no palette as it was: what tells the appearance is kept beside it.
    for (const QWidget *each = &widget; each; each = each->parentWidget()) {
        if (const QVariant appearance = each->property(appearanceProperty); appearance.isValid())
            return colors(Appearance(appearance.toInt()));
    }
    return colors(systemAppearance());
}

Appearance systemAppearance()
{
    return appearanceOf(QGuiApplication::palette());
}

void configure(QWidget &window)
{
    const QString style = Platform::widgetStyle();
    if (!style.isEmpty() && QApplication::style()->name() != style)
        QApplication::setStyle(QStyleFactory::create(style));
    new Follower(window);
    setAppearance(window, systemAppearance());
}

void choose(QWidget &window, std::optional<Appearance> choice)
{
    window.setProperty(chosenProperty, choice.has_value());
    QApplication::setPalette(QPalette()); // The last choice would hide what the system has.
    const Appearance appearance = choice.value_or(systemAppearance());
    setAppearance(window, appearance);
    if (!choice)
        return;
    QPalette palette = paletteOf(colors(appearance));
    palette.setColor(QPalette::Window, colors(appearance).window);
    QApplication::setPalette(palette);
}

void setAppearance(QWidget &window, Appearance appearance)
{
    const Colors &now = colors(appearance);
    window.setProperty(appearanceProperty, int(appearance));
    // Fonts and palettes do not pass through a style sheet from parent to child: all widgets have the application's.
    QApplication::setFont(textFont());
    QApplication::setPalette(paletteOf(now));
    window.setStyleSheet(styleSheet(now));
}

QFont textFont()
{
    return fontOfSize(13);
}

QFont smallFont()
{
    return fontOfSize(12);
}

QFont headingFont()
{
    QFont font = fontOfSize(17);
    font.setWeight(QFont::DemiBold);
    return font;
}

QFont figureFont()
{
    return textFont(); // Both systems' fonts have figures of one width.
}

} // namespace VELTheme
