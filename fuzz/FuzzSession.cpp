#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "store/LintoraSession.h"

#include <cstdlib>

/// Any bytes as a session. What was read must be written and read again unchanged, and in the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const LintoraSession session = LintoraSession::decode({data, static_cast<qsizetype>(size)});
        const QByteArray encoded = session.encoded();
        const LintoraSession again = LintoraSession::decode(encoded);
        if (again != session || again.encoded() != encoded)
            std::abort();
    } catch (const ConversionError &) {
    } catch (const PlatformError &) {
    }
    return 0;
}
