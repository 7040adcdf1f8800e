#include "app/Lintora/sound/device/QtMediaDevice.h"

#include "app/Lintora/sound/device/FramePicture.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int patienceMS = 600; ///< How long a seek may take before the next one begins.
constexpr qint64 microsecondsOfMS = 1'000;

} // namespace

QtMediaDevice::QtMediaDevice(Listener listener)
    : m_listener(std::move(listener))
{
    m_player.setAudioOutput(&m_output); // without a device it is played silently
    if (QMediaDevices::defaultAudioOutput().isNull())
        QTimer::singleShot(0, this, [this] { m_listener.noticed(u"没有可用的音频输出设备，播放时没有声音。"_s); });
    m_player.setVideoSink(&m_sink);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMS);
    m_showing.setSingleShot(true);
    m_showing.setInterval(0);
    connect(&m_patience, &QTimer::timeout, this, &QtMediaDevice::tryAgain);
    connect(&m_showing, &QTimer::timeout, this, &QtMediaDevice::showNewest);
    connect(&m_player, &QMediaPlayer::mediaStatusChanged, this, &QtMediaDevice::followStatus);
    m_doubt.setSingleShot(true);
    m_doubt.setInterval(patienceMS);
    connect(&m_doubt, &QTimer::timeout, this, &QtMediaDevice::fail);
    connect(&m_player, &QMediaPlayer::errorOccurred, this, &QtMediaDevice::doubt);
    connect(&m_player, &QMediaPlayer::durationChanged, this, [this](qint64 ms) { m_listener.measured(ms); });
    connect(&m_player, &QMediaPlayer::positionChanged, this, [this](qint64 ms) {
        if (!m_player.hasVideo() && !m_sought && m_player.playbackState() == QMediaPlayer::PlayingState)
            goOn(ms);
    });
    connect(&m_sink, &QVideoSink::videoFrameChanged, this, &QtMediaDevice::take);
}

QtMediaDevice::~QtMediaDevice()
{
    m_player.disconnect(this);
    m_sink.disconnect(this);
}

void QtMediaDevice::open(const QString &path)
{
    m_isLoaded = false;
    m_wantsPlaying = false;
    m_isAtEnd = false;
    m_wanted = 0;
    m_sought.reset();
    m_patience.stop();
    m_doubt.stop();
    m_newest = {};
    m_player.setSource(path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path));
}

void QtMediaDevice::play()
{
    m_wantsPlaying = true;
    if (m_isLoaded && !m_sought)
        m_player.play();
}

void QtMediaDevice::pause()
{
    m_wantsPlaying = false;
    if (m_player.playbackState() == QMediaPlayer::PlayingState)
        m_player.pause();
}

void QtMediaDevice::seek(qint64 ms)
{
    m_wanted = ms;
    if (m_isLoaded && !m_sought)
        seekNow();
}

void QtMediaDevice::setRate(double rate)
{
    m_player.setPlaybackRate(rate);
}

void QtMediaDevice::followStatus(QMediaPlayer::MediaStatus status)
{
    if (status == QMediaPlayer::LoadedMedia && !m_isLoaded) {
        m_isLoaded = true;
        seekNow();
    } else if (status == QMediaPlayer::EndOfMedia) {
        m_wantsPlaying = false;
        m_isAtEnd = true;
        // From where it has stopped it could not be put anywhere. It shows its beginning now, which is not to be seen.
        m_player.pause();
        m_listener.ended();
    }
}

/// A seek that comes while the one before is under way makes the framework complain, and goes well.
void QtMediaDevice::doubt(QMediaPlayer::Error /*error*/, const QString &reason)
{
    m_reason = reason;
    if (m_isLoaded)
        m_doubt.start();
    else
        fail();
}

void QtMediaDevice::fail()
{
    m_wantsPlaying = false;
    m_listener.failed(u"无法播放这个文件：%1"_s.arg(m_reason));
}

void QtMediaDevice::goOn(qint64 ms)
{
    m_doubt.stop();
    m_listener.moved(ms);
}

void QtMediaDevice::seekNow()
{
    m_sought = std::exchange(m_wanted, std::nullopt);
    m_attempts = 0;
    m_isAtEnd = m_isAtEnd && !m_sought;
    if (!m_sought)
        return;
    // Only what stands still, not what is stopped, shows a picture.
    if (m_player.playbackState() == QMediaPlayer::StoppedState)
        m_player.pause();
    m_patience.start();
    m_player.setPosition(*m_sought);
    if (!m_player.hasVideo())
        settle(); // nothing will come that says so
}

/// A medium that has just been loaded takes no position until it stands still.
void QtMediaDevice::tryAgain()
{
    constexpr int attempts = 3;
    if (!m_sought || m_wanted || ++m_attempts >= attempts)
        return settle();
    m_patience.start();
    m_player.setPosition(*m_sought);
}

/// A seek is done: the next one, or on with it.
void QtMediaDevice::settle()
{
    m_patience.stop();
    m_sought.reset();
    if (m_wanted)
        seekNow();
    else if (m_wantsPlaying)
        m_player.play();
}

void QtMediaDevice::take(const QVideoFrame &frame)
{
    if (!frame.isValid() || m_isAtEnd)
        return;
    m_doubt.stop();
    if (m_sought) {
        constexpr qint64 reachMS = 500; // a picture may be shown for long
        const qint64 ms = frame.startTime() / microsecondsOfMS;
        if (ms > *m_sought + reachMS || ms < *m_sought - reachMS)
            return tryAgain(); // from before
        settle();
    }
    m_newest = frame;
    m_showing.start();
}

/// Frames that come faster than they can be shown are passed over.
void QtMediaDevice::showNewest()
{
    const QVideoFrame frame = std::exchange(m_newest, {});
    if (frame.isValid())
        m_listener.framed(FramePicture::of(frame), frame.startTime() / microsecondsOfMS);
}
