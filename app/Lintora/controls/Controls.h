#pragma once

#include "app/Lintora/controls/Theme.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTabBar>
#include <QToolButton>

#include <initializer_list>

class ElidedLabel;

/// The controls that the window is made of, with what all of them share: a name for who cannot see them, a help text,
/// and the keyboard's way to them.
namespace Controls {

QPushButton *button(const QString &text, QWidget *parent, const QString &help = {});
QPushButton *primaryButton(const QString &text, QWidget *parent); ///< The one that a sheet is about.
QPushButton *quietButton(const QString &text, QWidget *parent);   ///< Without an outline.

/// A button that shows a sign; `name` is what it is called.
QToolButton *signButton(VELTheme::Glyph glyph, const QString &name, QWidget *parent, const QString &help = {});

QLabel *heading(const QString &text, QWidget *parent);
QLabel *note(const QString &text, QWidget *parent); ///< Small, secondary, wrapped.
void showAsFailure(QLabel *note, bool isFailure);   ///< In the colour of failures, or secondary again.

/// Titles beside each other, of which one is chosen.
QTabBar *tabs(const QString &name, const QStringList &titles, QWidget *parent);

QWidget *rule(QWidget *parent); ///< A line across.

/// The last row of a sheet: what has become of what it does, and its buttons.
QWidget *statusRow(ElidedLabel *status, std::initializer_list<QPushButton *> buttons, QWidget *parent);

/// `page`, which scrolls up and down where there is too little room for it.
QScrollArea *scrolling(QWidget *page, QWidget *parent);

} // namespace Controls
