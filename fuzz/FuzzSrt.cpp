#include "core/ConversionError.h"
#include "core/SRT.h"

#include <cstdlib>

/// Any bytes as a subtitle file. What is accepted must be cues that can be shown.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
        const QList<Subtitle> cues = SRT::decode(bytes);
        for (const Subtitle &cue : cues) {
            if (cue.end <= cue.start || cue.text.trimmed().isEmpty())
                std::abort();
        }
        SRT::serialize(cues);
    } catch (const ConversionError &) {
    }
    return 0;
}
