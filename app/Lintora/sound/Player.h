#pragma once

#include "app/Lintora/sound/MediaDevice.h"

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <optional>

/// Plays a medium, whole or a stretch of it. Times are milliseconds of the medium.
///
/// The device that plays is made when something is played or sought first: until then a player costs nothing. Where
/// there is none, or no file, the position moves by the clock all the same.
class Player : public QObject
{
    Q_OBJECT

public:
    /// How a device is made. @throws ConversionError when there is none
    using DeviceMaker = std::function<std::unique_ptr<MediaDevice>(MediaDevice::Listener)>;

    explicit Player(QObject *parent = nullptr); ///< Plays by the system's media framework.
    explicit Player(DeviceMaker maker, QObject *parent = nullptr);
    ~Player() override;

    /// What is played from now on, from its beginning, standing still; empty: nothing.
    void setFile(const QString &path);
    const QString &file() const { return m_file; }

    /// How long the medium is at least; the device may know of more. The position goes no further.
    void setLength(qint64 ms);

    bool isPlaying() const { return m_isPlaying; }
    qint64 positionMS() const; ///< What is heard and seen now: between two pictures it goes on with the clock.

    void play();   ///< From the position on, to the end; at the end, from the beginning.
    void pause();  ///< Stays where it is. Ends a stretch.
    void toggle(); ///< One or the other.

    /// Puts the position there, playing or not. Of several in a row the newest wins. Ends a stretch.
    void seek(qint64 ms);

    enum class Repeat
    {
        once,
        forever
    };

    /// Plays [startMS, endMS), then stays at its end, or begins anew.
    void playStretch(qint64 startMS, qint64 endMS, Repeat repeat = Repeat::once);
    bool isLooping() const; ///< Whether a stretch is played again and again.

    static constexpr double slowest = 0.5;
    static constexpr double fastest = 2;
    double rate() const { return m_rate; }
    void setRate(double rate); ///< Times as fast as it is; kept within slowest and fastest.

Q_SIGNALS:
    void positionChanged(qint64 ms); ///< While it plays, some sixty times a second.
    void playingChanged();
    void rateChanged();
    void fileChanged();
    void framed(const QImage &frame);         ///< What is to be seen now; null where there is no picture.
    void unavailable(const QString &message); ///< What cannot be heard or seen; for the person, each sentence once.

private:
    struct Stretch
    {
        qint64 startMS = 0;
        qint64 endMS = 0;
        Repeat repeat = Repeat::once;
    };

    MediaDevice *device();
    void moveTo(qint64 ms);
    void setPlaying(bool isPlaying);
    void tick();
    void end();
    void hear(qint64 ms);
    void say(const QString &message);

    DeviceMaker m_maker;
    QString m_file;
    qint64 m_lengthMS = 0; ///< 0 while it is not known.
    bool m_isPlaying = false;
    bool m_isMoving = false; ///< Whether the device has begun to play from the anchor on.
    double m_rate = 1;
    std::optional<Stretch> m_stretch;
    double m_anchorMS = 0; ///< Where it was ...
    QElapsedTimer m_clock; ///< ... that long ago.
    QTimer m_ticks;
    QSet<QString> m_said;
    bool m_hasNoDevice = false;
    std::unique_ptr<MediaDevice> m_device; ///< Null until it is needed, and where there is none.
};
