#include "app/Lintora/controls/BusyBar.h"

#include "app/Lintora/controls/Theme.h"

#include <QPainter>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

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
    setAccessibleName(u"进行中"_s);
}

void BusyBar::setShare(std::optional<double> share)
{
    if (m_share == share)
        return;
    m_share = share;
    setAccessibleDescription(share ? u"%1%"_s.arg(int(*share * 100)) : QString());
    followTimer();
    update();
}

void BusyBar::followTimer()
{
    if (!isVisible() || m_share)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(frameMS, this);
}

void BusyBar::showEvent(QShowEvent * /*event*/)
{
    followTimer();
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
    const QRectF done(0, 0, width() * m_share.value_or(0), thickness);
    const QRectF running(m_phase - runner, 0, runner, thickness);
    const QRectF segment = (m_share ? done : running) & QRectF(rect());
    painter.setBrush(colors.accent);
    painter.drawRoundedRect(segment, thickness / 2.0, thickness / 2.0);
}
