#include "app/Lintora/sound/StripView.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/sound/Player.h"
#include "app/Lintora/sound/StripPainter.h"

#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double zoomStep = 1.25;
constexpr double clickReach = 3;     // points up to which a press is a click
constexpr double snapReach = 8;      // points from which a border is drawn to something
constexpr qint64 farthestSnap = 250; // milliseconds, however small everything is drawn
constexpr double wheelShare = 0.15;  // of the strip's width for each notch of a wheel
constexpr int notch = 120;           // eighths of a degree
constexpr auto edgeInterval = 30;    // milliseconds
constexpr qint64 roomBehind = 5'000; // milliseconds behind the last cue

} // namespace

StripView::StripView(LintoraModel &model, Player &player, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_player(player)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(u"时间条"_s);
    setAccessibleDescription(u"声音波形与字幕的时间，可拖动边界"_s);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&model, &LintoraModel::itemsChanged, this, &StripView::followCues);
    connect(&model, &LintoraModel::picturedChanged, this, qOverload<>(&QWidget::update)); // its rate
    connect(&model.sound(), &Sound::waveformChanged, this, &StripView::followLength);
    connect(&model.sound(), &Sound::mediumChanged, this, &StripView::followLength);
    connect(&player, &Player::positionChanged, this, &StripView::followPlayhead);
}

const CueTimeline &StripView::cues()
{
    if (std::exchange(m_areCuesOld, false))
        m_cues = CueTimeline(m_model.items());
    return m_cues;
}

/// What is held may not be there any more.
void StripView::followCues()
{
    giveUp();
    m_areCuesOld = true;
    if (isVisible())
        followLength();
}

void StripView::followLength()
{
    m_scale.setLength(std::max(m_model.sound().waveform().lengthMS(), cues().end() + roomBehind));
    QWidget::update();
}

void StripView::followPlayhead(qint64 ms)
{
    if (m_pressed == Pressed::nothing && m_player.isPlaying() && m_scale.turnTo(ms))
        QWidget::update();
    const double x = m_scale.x(ms);
    QWidget::update(StripPainter::playheadAt(m_playheadX, height()));
    QWidget::update(StripPainter::playheadAt(x, height()));
    m_playheadX = x;
}

void StripView::setCurrent(std::optional<qsizetype> cue)
{
    if (std::exchange(m_current, cue) != cue)
        QWidget::update();
}

void StripView::bring(qsizetype cue)
{
    if (m_pressed != Pressed::nothing || cue < 0 || cue >= m_model.items().size())
        return;
    update([&] { m_scale.centre(m_model.items().at(cue).start, m_model.items().at(cue).end); });
}

void StripView::zoom(double factor)
{
    const double playhead = m_scale.x(m_player.positionMS());
    update([&] { m_scale.zoom(factor, playhead >= 0 && playhead < width() ? playhead : width() / 2.0); });
}

void StripView::update(const std::function<void()> &change)
{
    const TimeScale before = m_scale;
    change();
    if (m_scale != before)
        QWidget::update();
}

QSize StripView::sizeHint() const
{
    return {100 * VELTheme::step, 24 * VELTheme::step};
}

void StripView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    followLength();
    if (m_current)
        bring(*m_current);
}

void StripView::resizeEvent(QResizeEvent * /*event*/)
{
    m_scale.setWidth(width());
}

void StripView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    const qint64 playhead = m_player.positionMS();
    m_playheadX = m_scale.x(playhead);
    StripPainter::paint(painter,
                        {.scale = m_scale,
                         .cues = cues(),
                         .waveform = m_model.sound().waveform(),
                         .grid = m_model.cueTiming().grid(),
                         .current = m_current,
                         .moved = m_gesture.moved(),
                         .newCue = m_gesture.drawn(),
                         .playheadMS = playhead},
                        size(), event->rect(), colors);
    painter.setPen(hasFocus() ? colors.accent : colors.border);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

// The pointer

std::optional<CueDrag::Grip> StripView::gripAt(QPointF place, Qt::KeyboardModifiers modifiers)
{
    return StripGesture::at(cues(), m_scale, place.x(), m_model.cueTiming().grid(),
                            modifiers.testFlag(Qt::ControlModifier), m_current);
}

CueDrag::Rules StripView::rules(Qt::KeyboardModifiers modifiers) const
{
    const auto snapping = [this](bool isStart) {
        return [this, isStart](qint64 nearMS, qint64 withinMS) {
            const SpeechBorders &speech = m_model.sound().waveform().speech();
            auto best = isStart ? speech.onset(nearMS, withinMS) : speech.end(nearMS, withinMS);
            const qint64 playhead = m_player.positionMS();
            const qint64 away = std::abs(playhead - nearMS);
            if (away <= withinMS && (!best || away < std::abs(*best - nearMS)))
                best = playhead;
            return best;
        };
    };
    return {.grid = m_model.cueTiming().grid(),
            .snaps = !modifiers.testFlag(Qt::AltModifier),
            .passes = modifiers.testFlag(Qt::ShiftModifier),
            .reachMS = std::min(farthestSnap, qint64(snapReach * m_scale.msPerPoint())),
            .starts = snapping(true),
            .ends = snapping(false)};
}

void StripView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(event->position(), event->modifiers());
}

void StripView::press(QPointF place, Qt::KeyboardModifiers modifiers)
{
    m_pressedAt = place;
    m_dragX = place.x();
    m_isDragging = false;
    const qint64 time = m_scale.time(place.x());
    if (place.y() < StripPainter::rulerHeight) {
        m_pressed = Pressed::playhead;
        m_player.seek(std::max<qint64>(0, time));
        return;
    }
    m_pressed = Pressed::held;
    const auto grip = gripAt(place, modifiers);
    if (!grip) {
        m_gesture.drawFrom(time);
        return;
    }
    m_gesture.hold(*grip, time);
    const bool isSecond =
        grip->part == CueDrag::Part::joint && place.x() >= m_scale.x(cues().items().at(grip->next).start);
    Q_EMIT cueRequested(isSecond ? grip->next : grip->cue);
}

void StripView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_pressed == Pressed::nothing)
        showCursor(event->position(), event->modifiers());
    else
        dragTo(event->position().x(), event->modifiers());
}

void StripView::dragTo(double x, Qt::KeyboardModifiers modifiers)
{
    m_dragX = x;
    m_modifiers = modifiers;
    if (m_pressed == Pressed::playhead) {
        m_player.seek(std::max<qint64>(0, m_scale.time(x)));
        return;
    }
    if (!m_isDragging && std::abs(x - m_pressedAt.x()) < clickReach)
        return;
    if (!m_isDragging && !m_model.cueTiming().mayEdit()) {
        giveUp();
        return;
    }
    m_isDragging = true;
    m_gesture.moveTo(m_scale.time(x), cues(), rules(modifiers));
    if (x >= 0 && x < width())
        m_edgeTimer.stop();
    else if (!m_edgeTimer.isActive())
        m_edgeTimer.start(edgeInterval, this);
    QWidget::update();
}

void StripView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_edgeTimer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_scale.scroll((m_dragX < 0 ? m_dragX : m_dragX - width()) / 4);
    dragTo(m_dragX, m_modifiers);
}

void StripView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    letGo();
    showCursor(event->position(), event->modifiers());
}

/// The cues change now, or the playhead goes to where something was clicked.
void StripView::letGo()
{
    const StripGesture gesture = std::exchange(m_gesture, {});
    const bool wasHeld = std::exchange(m_pressed, Pressed::nothing) == Pressed::held;
    m_edgeTimer.stop();
    QWidget::update();
    if (!wasHeld)
        return;
    if (!std::exchange(m_isDragging, false)) {
        if (m_pressedAt.y() < height() - StripPainter::laneHeight)
            m_player.seek(std::max<qint64>(0, m_scale.time(m_pressedAt.x())));
    } else if (gesture.drawn()) {
        if (const auto cue = m_model.cueTiming().insert(gesture.drawn()->start, gesture.drawn()->end))
            Q_EMIT cueDrawn(*cue);
    } else if (!gesture.moved().isEmpty()) {
        m_model.cueTiming().setTimes(gesture.moved());
    }
}

/// As if nothing had been held.
void StripView::giveUp()
{
    m_gesture.letGo();
    m_pressed = Pressed::nothing;
    m_isDragging = false;
    m_edgeTimer.stop();
    QWidget::update();
}

void StripView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const auto cue = event->position().y() < StripPainter::rulerHeight ? std::nullopt
                                                                       : cues().at(m_scale.time(event->position().x()));
    if (event->button() == Qt::LeftButton && cue)
        Q_EMIT editRequested(*cue);
    else
        mousePressEvent(event);
}

void StripView::showCursor(QPointF place, Qt::KeyboardModifiers modifiers)
{
    using Part = CueDrag::Part;
    const auto grip = place.y() < StripPainter::rulerHeight ? std::nullopt : gripAt(place, modifiers);
    if (!grip)
        unsetCursor();
    else
        setCursor(grip->part == Part::whole   ? Qt::OpenHandCursor
                  : grip->part == Part::joint ? Qt::SplitHCursor
                                              : Qt::SizeHorCursor);
}

void StripView::wheelEvent(QWheelEvent *event)
{
    event->accept();
    const QPoint angle = event->angleDelta();
    const int turned = std::abs(angle.x()) > std::abs(angle.y()) ? angle.x() : angle.y();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        update([&] { m_scale.zoom(std::pow(zoomStep, double(turned) / notch), event->position().x()); });
        return;
    }
    const QPoint pixels = event->pixelDelta();
    const int moved = std::abs(pixels.x()) > std::abs(pixels.y()) ? pixels.x() : pixels.y();
    update([&] { m_scale.scroll(moved != 0 ? -moved : -double(turned) / notch * wheelShare * width()); });
}

bool StripView::event(QEvent *event)
{
    if (event->type() != QEvent::NativeGesture)
        return QWidget::event(event);
    const auto &gesture = static_cast<const QNativeGestureEvent &>(*event);
    if (gesture.gestureType() == Qt::ZoomNativeGesture)
        update([&] { m_scale.zoom(1 + gesture.value(), gesture.position().x()); });
    return true;
}

// Keys

void StripView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        stepPlayhead(event->key() == Qt::Key_Right ? 1 : -1, event->modifiers());
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        stepCue(event->key() == Qt::Key_Down ? 1 : -1);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoom(zoomStep);
        break;
    case Qt::Key_Minus:
        zoom(1 / zoomStep);
        break;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        update([&] { m_scale.scroll((event->key() == Qt::Key_PageDown ? 1 : -1) * width() * 0.9); });
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
        m_player.seek(event->key() == Qt::Key_Home ? 0 : m_model.sound().waveform().lengthMS());
        update([&] { m_scale.turnTo(m_player.positionMS()); });
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_current && event->modifiers() == Qt::NoModifier)
            Q_EMIT editRequested(*m_current);
        break;
    case Qt::Key_Escape:
        if (m_gesture.isHeld()) {
            giveUp();
            break;
        }
        [[fallthrough]];
    default:
        QWidget::keyPressEvent(event);
    }
}

void StripView::stepPlayhead(int direction, Qt::KeyboardModifiers modifiers)
{
    constexpr qint64 second = 1'000;
    const FrameGrid grid = m_model.cueTiming().grid();
    const qint64 from = m_player.positionMS();
    const qint64 to =
        modifiers.testFlag(Qt::ShiftModifier) ? from + direction * second : grid.time(grid.frame(from) + direction);
    m_player.seek(std::max<qint64>(0, to));
    update([&] { m_scale.turnTo(m_player.positionMS()); });
}

void StripView::stepCue(int direction)
{
    const qsizetype to = m_current ? *m_current + direction : 0;
    if (to >= 0 && to < m_model.items().size())
        Q_EMIT cueStepped(to);
}

/// A drag that nobody is there for any more is none.
void StripView::focusOutEvent(QFocusEvent *event)
{
    giveUp();
    QWidget::focusOutEvent(event);
}
