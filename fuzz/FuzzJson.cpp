#include "core/PlatformError.h"
#include "core/Subtitle.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"
#include "fcp/Options.h"

#include <cstdlib>

namespace {

/// Reads a record; what was read must be written and read again unchanged.
template <class Read, class Write>
void roundTrip(const QByteArray &bytes, Read &&read, Write &&write)
{
    try {
        JsonReader json(bytes);
        const auto value = read(json);
        json.finish();
        const QByteArray written = jsonBytes([&](JsonWriter &out) { write(out, value); });
        JsonReader again(written);
        if (read(again) != value)
            std::abort();
    } catch (const PlatformError &) {
    }
}

} // namespace

/// Any bytes as each of our records.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    roundTrip(bytes, readOptions, writeOptions);
    roundTrip(bytes, readSubtitles, writeSubtitles);
    return 0;
}
