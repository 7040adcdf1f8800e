#pragma once

#include <QImage>
#include <QString>

#include <functional>

/// What plays a file, sound and picture, by the system's media framework. Times are milliseconds of the medium.
///
/// Everything it is told is done as soon as it can be; what comes of it its listener hears, on the main thread, from
/// the event loop.
class MediaDevice
{
public:
    struct Listener
    {
        /// A picture is shown whose time begins at `ms`: the one at the position while it stands still.
        std::function<void(const QImage &picture, qint64 ms)> framed;
        std::function<void(qint64 ms)> moved;    ///< It plays there now. Where there are pictures, they tell it.
        std::function<void(qint64 ms)> measured; ///< The medium is so long.
        std::function<void()> ended;             ///< There is no more of it. It stands still.
        std::function<void(const QString &sentence)> noticed; ///< What will be missing, for the person.
        std::function<void(const QString &sentence)> failed;  ///< Why it cannot play the file.
    };

    virtual ~MediaDevice() = default;

    virtual void open(const QString &path) = 0; ///< Stands still at its beginning.
    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void seek(qint64 ms) = 0;      ///< Of several that come before one is done, the newest alone is done.
    virtual void setRate(double rate) = 0; ///< Times as fast.
};

/// What a library that plays offers under the name "lintoraMediaDevice": makes a device, which the caller owns.
using MediaDeviceMaker = MediaDevice *(MediaDevice::Listener);

/// The same under the name "lintoraStartMediaFramework": what the framework does once and long. On any thread; nothing
/// of it belongs to a thread.
using MediaFrameworkStarter = void();
