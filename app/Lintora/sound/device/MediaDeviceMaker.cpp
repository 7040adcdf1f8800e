#include "app/Lintora/sound/device/MediaFramework.h"
#include "app/Lintora/sound/device/QtMediaDevice.h"

#include <utility>

extern "C" Q_DECL_EXPORT MediaDevice *lintoraMediaDevice(MediaDevice::Listener listener);
extern "C" Q_DECL_EXPORT void lintoraStartMediaFramework();

MediaDevice *lintoraMediaDevice(MediaDevice::Listener listener)
{
    return new QtMediaDevice(std::move(listener));
}

void lintoraStartMediaFramework()
{
    MediaFramework::start();
}
