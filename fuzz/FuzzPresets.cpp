#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/json/JsonWriter.h"
#include "store/StylePresetStore.h"

#include <cmath>
#include <cstdlib>

/// Any bytes as a presets file. What was read must be written and read again unchanged, and be fit to be applied.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const QList<SubtitleStylePreset> presets = StylePresetStore::decode({data, static_cast<qsizetype>(size)});
        const QByteArray encoded = jsonBytes([&](JsonWriter &json) { writeSubtitleStylePresets(json, presets); });
        if (StylePresetStore::decode(encoded) != presets)
            std::abort();
        for (const SubtitleStylePreset &preset : presets) {
            if (!std::isfinite(preset.applying(Options()).fontSize))
                std::abort();
        }
    } catch (const ConversionError &) {
    } catch (const PlatformError &) {
    }
    return 0;
}
