#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "fcp/FCPXML.h"

#include <cstdlib>

namespace {

const QList<Subtitle> cues{{.id = 1, .start = 0, .end = 900, .text = QStringLiteral("一 & <二>")},
                           {.id = 2, .start = 900, .end = 1'900, .text = QStringLiteral("三\n四")},
                           {.id = 3, .start = 5'000, .end = 5'001, .text = QStringLiteral("五")}};

/// Titles into the document. The result must be a document with one project again.
void connectTitles(const QByteArray &bytes, const Options &options)
{
    const QByteArray written =
        FCPXML::convert(cues, FCPXML::document(bytes, QStringLiteral("/media")), options).toUtf8();
    const XmlDocument again = XmlDocument::parse(written, u"entity");
    FCPXML::project(again);
}

} // namespace

/// Any bytes as a project of the user's.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    Options options;
    try {
        options = FCPXML::settings(options, FCPXML::document(bytes, QStringLiteral("/media")));
    } catch (const ConversionError &) {
    } catch (const PlatformError &) {
        return 0;
    }
    try {
        connectTitles(bytes, options);
    } catch (const ConversionError &) {
    } catch (const PlatformError &) {
        // It was parsed before: what we wrote cannot be read.
        std::abort();
    }
    return 0;
}
