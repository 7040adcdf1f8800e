#pragma once

/// What lies below Qt Multimedia.
namespace MediaFramework {

/// Has it read its registry and load what plays a film: on the main thread, when something is played first, that would
/// be felt. Any thread, any number of times. Where another framework is used than GStreamer nothing happens.
void start();

} // namespace MediaFramework
