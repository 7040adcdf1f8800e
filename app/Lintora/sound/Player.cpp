#include "app/Lintora/sound/Player.h"

#include "app/Lintora/sound/MediaLibrary.h"
#include "core/ConversionError.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int tickMS = 16;
constexpr double jumpMS = 250;      ///< From this on the position jumps to where the device is ...
constexpr double approach = 0.25;   ///< ... below, it nears it by this share with each word of the device.
constexpr qint64 silenceMS = 1'500; ///< A device from which nothing was heard for so long is not waited for.

} // namespace

Player::Player(QObject *parent)
    : Player(MediaLibrary::makeDevice, parent)
{}

Player::Player(DeviceMaker maker, QObject *parent)
    : QObject(parent)
    , m_maker(std::move(maker))
{
    m_ticks.setTimerType(Qt::PreciseTimer);
    m_ticks.setInterval(tickMS);
    connect(&m_ticks, &QTimer::timeout, this, &Player::tick);
}

Player::~Player() = default;

MediaDevice *Player::device()
{
    if (m_device || m_hasNoDevice || m_file.isEmpty())
        return m_file.isEmpty() ? nullptr : m_device.get();
    try {
        m_device = m_maker({.framed =
                                [this](const QImage &picture, qint64 ms) {
                                    Q_EMIT framed(picture);
                                    hear(ms);
                                },
                            .moved = [this](qint64 ms) { hear(ms); },
                            .measured = [this](qint64 ms) { setLength(ms); },
                            .ended = [this] { end(); },
                            .noticed = [this](const QString &sentence) { say(sentence); },
                            .failed =
                                [this](const QString &sentence) {
                                    say(sentence);
                                    pause();
                                }});
        m_device->open(m_file);
        m_device->setRate(m_rate);
    } catch (const ConversionError &error) {
        m_hasNoDevice = true;
        say(error.message());
    }
    return m_device.get();
}

void Player::setFile(const QString &path)
{
    if (path == m_file)
        return;
    pause();
    m_file = path;
    m_lengthMS = 0;
    m_said.clear();
    if (m_device)
        m_device->open(path);
    m_anchorMS = 0;
    Q_EMIT fileChanged();
    Q_EMIT framed({});
    Q_EMIT positionChanged(0);
}

void Player::setLength(qint64 ms)
{
    m_lengthMS = std::max(m_lengthMS, ms);
}

qint64 Player::positionMS() const
{
    double position = m_anchorMS;
    if (m_isMoving)
        position += double(m_clock.nsecsElapsed()) / 1e6 * m_rate;
    if (m_stretch)
        position = std::min(position, double(m_stretch->endMS));
    if (m_lengthMS > 0)
        position = std::min(position, double(m_lengthMS));
    return std::llround(position);
}

bool Player::isLooping() const
{
    return m_stretch && m_stretch->repeat == Repeat::forever;
}

void Player::play()
{
    m_stretch.reset();
    if (m_lengthMS > 0 && positionMS() >= m_lengthMS)
        moveTo(0);
    setPlaying(true);
}

void Player::pause()
{
    const qint64 position = positionMS();
    m_stretch.reset();
    m_isMoving = false;
    m_anchorMS = double(position);
    setPlaying(false);
}

void Player::toggle()
{
    if (m_isPlaying)
        pause();
    else
        play();
}

void Player::seek(qint64 ms)
{
    m_stretch.reset();
    moveTo(ms);
}

void Player::playStretch(qint64 startMS, qint64 endMS, Repeat repeat)
{
    m_stretch = Stretch{.startMS = startMS, .endMS = std::max(endMS, startMS + 1), .repeat = repeat};
    moveTo(startMS);
    setPlaying(true);
}

void Player::setRate(double rate)
{
    const double within = std::clamp(rate, slowest, fastest);
    if (within == m_rate)
        return;
    m_anchorMS = double(positionMS());
    m_clock.start();
    m_rate = within;
    if (m_device)
        m_device->setRate(within);
    Q_EMIT rateChanged();
}

/// The device says when it is there and goes on.
void Player::moveTo(qint64 ms)
{
    const qint64 last = m_lengthMS > 0 ? m_lengthMS : ms;
    m_anchorMS = double(std::clamp<qint64>(ms, 0, std::max<qint64>(last, 0)));
    m_clock.start();
    MediaDevice *const device = this->device();
    m_isMoving = m_isPlaying && !device;
    if (device)
        device->seek(std::llround(m_anchorMS));
    Q_EMIT positionChanged(positionMS());
}

void Player::setPlaying(bool isPlaying)
{
    if (std::exchange(m_isPlaying, isPlaying) == isPlaying)
        return;
    m_clock.start();
    MediaDevice *const device = isPlaying ? this->device() : m_device.get();
    m_isMoving = isPlaying && !device;
    if (isPlaying)
        m_ticks.start();
    else
        m_ticks.stop();
    if (device && isPlaying)
        device->play();
    else if (device)
        device->pause();
    Q_EMIT playingChanged();
    Q_EMIT positionChanged(positionMS());
}

void Player::tick()
{
    if (!m_isMoving && m_clock.elapsed() > silenceMS) {
        m_isMoving = true;
        m_clock.start();
    }
    const qint64 now = positionMS();
    const bool isAtEnd = m_lengthMS > 0 && now >= m_lengthMS;
    if (isAtEnd || (m_stretch && now >= m_stretch->endMS))
        return end();
    Q_EMIT positionChanged(now);
}

/// Of the stretch, or of the medium.
void Player::end()
{
    if (!m_isPlaying)
        return;
    if (!isLooping())
        return pause();
    moveTo(m_stretch->startMS);
    if (m_device)
        m_device->play(); // it may have come to the end of the medium
}

/// The device plays there now.
void Player::hear(qint64 ms)
{
    if (!m_isPlaying)
        return;
    const double away = double(ms) - double(positionMS());
    if (std::exchange(m_isMoving, true)) {
        m_anchorMS += std::abs(away) > jumpMS ? away : away * approach;
        return;
    }
    // The picture at the anchor began a little before.
    if (std::abs(away) > jumpMS)
        m_anchorMS = double(ms);
    m_clock.start();
}

void Player::say(const QString &message)
{
    if (m_said.contains(message))
        return;
    m_said.insert(message);
    Q_EMIT unavailable(message);
}
