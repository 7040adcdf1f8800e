#include "app/Lintora/sound/device/QtMediaDevice.h"

#include <utility>

extern "C" Q_DECL_EXPORT MediaDevice *lintoraMediaDevice(MediaDevice::Listener listener);

MediaDevice *lintoraMediaDevice(MediaDevice::Listener listener)
{
    return new QtMediaDevice(std::move(listener));
}
