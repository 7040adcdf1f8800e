#include "app/Lintora/sound/device/MediaFramework.h"

#include <QLibrary>

#include <array>

using namespace Qt::StringLiterals;

namespace MediaFramework {

void start()
{
    if (qgetenv("QT_MEDIA_BACKEND") != "gstreamer")
        return;
    // By name: its headers would be needed for these four alone.
    QLibrary library(u"gstreamer-1.0"_s, 0);
    const auto begin = reinterpret_cast<void (*)(int *, char ***)>(library.resolve("gst_init"));
    const auto find = reinterpret_cast<void *(*)(const char *)>(library.resolve("gst_element_factory_find"));
    const auto load = reinterpret_cast<void *(*)(void *)>(library.resolve("gst_plugin_feature_load"));
    const auto release = reinterpret_cast<void (*)(void *)>(library.resolve("gst_object_unref"));
    if (!begin || !find || !load || !release)
        return; // who plays says what is missing
    begin(nullptr, nullptr);
    constexpr std::array elements{"playbin",      "qtdemux",       "avdec_h264", "avdec_aac", "videoconvert",
                                  "audioconvert", "audioresample", "pulsesink",  "appsink"};
    for (const char *const name : elements) {
        void *const found = find(name);
        if (!found)
            continue;
        if (void *const loaded = load(found))
            release(loaded);
        release(found);
    }
}

} // namespace MediaFramework
