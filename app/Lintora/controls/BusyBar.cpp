#include "app/Lintora/controls/BusyBar.h"

#include "app/Lintora/controls/Theme.h"

#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int thickness = VELTheme::step;
constexpr int runner = 24;
constexpr int frameMS = 40;
constexpr int speed = 3; // points a frame

} // namespace

BusyBar::BusyBar(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(20 * VELTheme::step, thickness);
    setAccessibleName(QStringLiteral("进行中"));
}

void BusyBar::showEvent(QShowEvent * /*event*/)
{
    m_timer.start(frameMS, this);
}

void BusyBar::hideEvent(QHideEvent * /*event*/)
{
    m_timer.stop();
}

void BusyBar::timerEvent(QTimerEvent * /*event*/)
{
    m_phase = (m_phase + speed) % (width() + runner);
    update();
}

void BusyBar::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.border);
    painter.drawRoundedRect(rect(), thickness / 2.0, thickness / 2.0);
    const QRect segment = QRect(m_phase - runner, 0, runner, thickness) & rect();
    painter.setBrush(colors.accent);
    painter.drawRoundedRect(segment, thickness / 2.0, thickness / 2.0);
}
