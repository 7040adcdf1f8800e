#include "app/Lintora/controls/Controls.h"

#include "app/Lintora/controls/ElidedLabel.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace Controls {

namespace {

void describe(QAbstractButton &button, const QString &name, const QString &help)
{
    button.setFocusPolicy(Qt::StrongFocus);
    button.setAccessibleName(name);
    button.setToolTip(help);
    button.setAccessibleDescription(help);
}

} // namespace

QPushButton *button(const QString &text, QWidget *parent, const QString &help)
{
    auto *const button = new QPushButton(text, parent);
    button->setAutoDefault(true); // Return presses it, as in the system's own dialogs.
    describe(*button, text, help);
    return button;
}

QPushButton *primaryButton(const QString &text, QWidget *parent)
{
    QPushButton *const primary = button(text, parent);
    primary->setProperty("primary", true);
    return primary;
}

QPushButton *quietButton(const QString &text, QWidget *parent)
{
    QPushButton *const quiet = button(text, parent);
    quiet->setProperty("quiet", true);
    return quiet;
}

QToolButton *signButton(VELTheme::Glyph glyph, const QString &name, QWidget *parent, const QString &help)
{
    auto *const button = new QToolButton(parent);
    button->setIcon(VELTheme::icon(glyph, *button));
    button->setIconSize({VELTheme::iconSize, VELTheme::iconSize});
    button->setProperty("quiet", true);
    describe(*button, name, help.isEmpty() ? name : help);
    return button;
}

QLabel *heading(const QString &text, QWidget *parent)
{
    auto *const label = new QLabel(text, parent);
    label->setFont(VELTheme::headingFont());
    return label;
}

QLabel *note(const QString &text, QWidget *parent)
{
    auto *const label = new QLabel(text, parent);
    label->setFont(VELTheme::smallFont());
    label->setProperty("secondary", true);
    label->setWordWrap(true);
    label->setMinimumWidth(0);
    return label;
}

void showAsFailure(QLabel *note, bool isFailure)
{
    if (note->property("failure").toBool() == isFailure)
        return;
    note->setProperty("failure", isFailure);
    note->setProperty("secondary", !isFailure);
    note->style()->unpolish(note);
    note->style()->polish(note);
}

QTabBar *tabs(const QString &name, const QStringList &titles, QWidget *parent)
{
    auto *const tabs = new QTabBar(parent);
    tabs->setAccessibleName(name);
    tabs->setDrawBase(false);
    tabs->setExpanding(false);
    tabs->setFocusPolicy(Qt::StrongFocus);
    for (const QString &title : titles)
        tabs->addTab(title);
    return tabs;
}

QWidget *rule(QWidget *parent)
{
    auto *const line = new QFrame(parent);
    line->setProperty("rule", true);
    return line;
}

QWidget *statusRow(ElidedLabel *status, std::initializer_list<QPushButton *> buttons, QWidget *parent)
{
    auto *const row = new QWidget(parent);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    status->setFont(VELTheme::smallFont());
    status->setProperty("secondary", true);
    status->setAccessibleName(u"状态"_s);
    layout->addWidget(status, 1);
    for (QPushButton *const button : buttons)
        layout->addWidget(button);
    return row;
}

QScrollArea *scrolling(QWidget *page, QWidget *parent)
{
    auto *const area = new QScrollArea(parent);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return area;
}

} // namespace Controls
