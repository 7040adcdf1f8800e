#pragma once

#include "app/Lintora/sound/MediaDevice.h"

#include <memory>

/// The library that plays media. It is loaded when it is needed first: most sessions and every start do without what it
/// brings with it.
namespace MediaLibrary {

/// Loads it and starts the media framework on a worker, which takes tenths of a second: once playing is near. Whoever
/// makes a device meanwhile waits for that.
void prepare();

/// @throws ConversionError when it is not there or cannot be loaded, with the reason as the detail
std::unique_ptr<MediaDevice> makeDevice(MediaDevice::Listener listener);

} // namespace MediaLibrary
