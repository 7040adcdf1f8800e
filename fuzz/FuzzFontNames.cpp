#include "app/fonts/FontNames.h"

#include <cstdlib>

/// Any bytes as a font's name table. Names that are given must be fit to be shown and written.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FontNames::Names names = FontNames::read({data, static_cast<qsizetype>(size)});
    for (const QString &family : names.families) {
        if (family.isEmpty() || family.size() > 256 || !family.isValidUtf16())
            std::abort();
    }
    if (!names.chinese.isEmpty() && !names.families.contains(names.chinese))
        std::abort();
    if (!names.english.isEmpty() && !names.families.contains(names.english))
        std::abort();
    return 0;
}
