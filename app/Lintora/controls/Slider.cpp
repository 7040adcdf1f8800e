#include "app/Lintora/controls/Slider.h"

#include "app/Lintora/controls/Theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double handleSide = 14;
constexpr double grooveHeight = 4;

} // namespace

Slider::Slider(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize Slider::sizeHint() const
{
    return {30 * VELTheme::step, VELTheme::controlHeight};
}

QSize Slider::minimumSizeHint() const
{
    return {12 * VELTheme::step, VELTheme::controlHeight};
}

/// Where the middle of the handle stands, from the left.
double Slider::positionOf(int value) const
{
    const double range = std::max(1, maximum() - minimum());
    const double part = std::clamp((value - minimum()) / range, 0.0, 1.0);
    return handleSide / 2 + 1 + part * (width() - handleSide - 2);
}

int Slider::valueAt(double position) const
{
    const double room = std::max(1.0, width() - handleSide - 2);
    const double part = std::clamp((position - handleSide / 2 - 1) / room, 0.0, 1.0);
    return minimum() + int(std::lround(part * (maximum() - minimum())));
}

void Slider::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double middle = height() / 2.0;
    const double handle = positionOf(sliderPosition());
    const QRectF groove(1, middle - grooveHeight / 2, width() - 2, grooveHeight);
    painter.setBrush(colors.border);
    painter.drawRoundedRect(groove, grooveHeight / 2, grooveHeight / 2);
    if (isEnabled()) {
        // A range that goes below zero is filled from there.
        const double origin = minimum() < 0 && maximum() > 0 ? positionOf(0) : groove.left();
        painter.setBrush(colors.accent);
        painter.drawRoundedRect(
            QRectF(QPointF(std::min(origin, handle), groove.top()), QPointF(std::max(origin, handle), groove.bottom())),
            grooveHeight / 2, grooveHeight / 2);
    }
    const QPointF centre(handle, middle);
    painter.setBrush(isEnabled() ? colors.raised : colors.window);
    painter.setPen(QPen(isEnabled() ? colors.outline : colors.border, 1));
    painter.drawEllipse(centre, handleSide / 2 - 0.5, handleSide / 2 - 0.5);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(colors.accent, 2));
        painter.drawEllipse(centre, handleSide / 2, handleSide / 2);
    }
}

void Slider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    begin();
    setSliderDown(true);
    setSliderPosition(valueAt(event->position().x()));
}

void Slider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        setSliderPosition(valueAt(event->position().x()));
}

void Slider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !isSliderDown())
        return;
    setSliderDown(false);
    end();
}

void Slider::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void Slider::keyPressEvent(QKeyEvent *event)
{
    if (!event->isAutoRepeat())
        begin();
    QSlider::keyPressEvent(event);
    if (!event->isAccepted())
        end();
}

void Slider::keyReleaseEvent(QKeyEvent *event)
{
    if (!event->isAutoRepeat() && !isSliderDown())
        end();
    QSlider::keyReleaseEvent(event);
}

void Slider::focusOutEvent(QFocusEvent *event)
{
    if (!isSliderDown())
        end();
    QSlider::focusOutEvent(event);
}

void Slider::hideEvent(QHideEvent *event)
{
    setSliderDown(false);
    end();
    QSlider::hideEvent(event);
}

void Slider::begin()
{
    if (m_isGesture)
        return;
    m_isGesture = true;
    Q_EMIT gestureBegan();
}

void Slider::end()
{
    if (!m_isGesture)
        return;
    m_isGesture = false;
    Q_EMIT gestureEnded();
}
