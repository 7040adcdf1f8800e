#include "app/Lintora/controls/Sheet.h"

#include "app/Lintora/controls/Controls.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int widest = 180 * VELTheme::step; // longer lines are hard to read
constexpr int compactWidth = 90 * VELTheme::step;
constexpr int inset = 3 * VELTheme::step;

} // namespace

Sheet::Sheet(Extent extent, QWidget *content)
    : QWidget(content)
    , m_extent(extent)
    , m_frame(new QFrame(this))
    , m_body(new QVBoxLayout(m_frame))
{
    m_frame->setProperty("sheet", true);
    m_body->setContentsMargins(VELTheme::margin, VELTheme::step * 3, VELTheme::margin, VELTheme::margin);
    m_body->setSpacing(VELTheme::gap);
    content->installEventFilter(this);
    hide();
}

QLabel *Sheet::addHeading(const QString &text)
{
    auto *const closing = Controls::signButton(VELTheme::Glyph::close, u"关闭"_s, m_frame);
    connect(closing, &QToolButton::clicked, this, &Sheet::close);
    auto *const row = new QHBoxLayout;
    QLabel *const heading = Controls::heading(text, m_frame);
    row->addWidget(heading, 1);
    row->addWidget(closing);
    m_body->insertLayout(0, row);
    setAccessibleName(text);
    return heading;
}

void Sheet::open(QWidget *focus)
{
    if (!isHidden())
        return;
    m_before.clear();
    for (QWidget *each = QApplication::focusWidget(); each && each != parentWidget(); each = each->parentWidget())
        m_before += each;
    setGeometry(parentWidget()->rect());
    show();
    raise();
    placeFrame();
    if (focus)
        focus->setFocus(Qt::OtherFocusReason);
    else
        focusNextPrevChild(true);
}

void Sheet::close()
{
    Q_EMIT closeRequested();
}

void Sheet::dismiss()
{
    if (isHidden())
        return;
    // What was edited may be gone; then what it lay in takes the keyboard.
    const auto takes = [](const QPointer<QWidget> &each) {
        return each && each->isVisible() && each->isEnabled() && each->focusPolicy() != Qt::NoFocus;
    };
    const auto before = std::ranges::find_if(m_before, takes);
    const bool hadFocus = isAncestorOf(QApplication::focusWidget()) || !QApplication::focusWidget();
    hide();
    if (hadFocus && before != m_before.end())
        (*before)->setFocus(Qt::OtherFocusReason);
}

void Sheet::returnTo(QWidget *focus)
{
    m_before.prepend(focus);
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return false;
}

void Sheet::placeFrame()
{
    const QRect room = rect().adjusted(inset, inset, -inset, -inset);
    QSize size(m_extent == Extent::wide ? room.width() : std::min(room.width(), widest), room.height());
    if (m_extent == Extent::compact) {
        size.setWidth(std::min(room.width(), compactWidth));
        const int needed =
            m_body->hasHeightForWidth() ? m_body->totalHeightForWidth(size.width()) : m_body->totalSizeHint().height();
        size.setHeight(std::min(room.height(), needed));
    }
    QRect frame({}, size);
    frame.moveCenter(room.center());
    m_frame->setGeometry(frame);
}

void Sheet::resizeEvent(QResizeEvent * /*event*/)
{
    placeFrame();
}

/// The keyboard goes round within the sheet.
bool Sheet::focusNextPrevChild(bool next)
{
    if (isHidden())
        return false;
    QWidget *const start = isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : this;
    const auto step = [next](QWidget *from) { return next ? from->nextInFocusChain() : from->previousInFocusChain(); };
    for (QWidget *each = step(start); each != start; each = step(each)) {
        if (isAncestorOf(each) && each->isEnabled() && each->isVisibleTo(this) &&
            (each->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            each->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return true;
}

void Sheet::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        event->accept(); // What lies behind hears nothing.
}

void Sheet::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void Sheet::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

void Sheet::paintEvent(QPaintEvent * /*event*/)
{
    QPainter(this).fillRect(rect(), VELTheme::colors(*this).scrim);
}
