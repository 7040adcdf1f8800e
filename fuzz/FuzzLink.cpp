#include "core/ConversionError.h"
#include "store/LaunchLink.h"
#include "store/Locations.h"
#include "store/Uuid.h"

#include <QDir>
#include <QFileInfo>

#include <cstdlib>

/// Sessions lie where link.dict says.
extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    qputenv("HOME", "/tmp/lintora-fuzz");
    return 0;
}

/// Any bytes as a launch link. Whatever the link, only a session file of the sessions folder comes out, and the link
/// that is made for it leads back to it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    try {
        const QString file = LaunchLink::sessionFile(QUrl::fromEncoded(bytes, QUrl::StrictMode));
        const QFileInfo info(file);
        const bool isConfined = info.path() == QDir::cleanPath(Locations::sessions()) && info.suffix() == u"json" &&
                                Uuid::parse(info.completeBaseName());
        if (!isConfined || LaunchLink::sessionFile(LaunchLink::launchURL(file)) != file)
            std::abort();
    } catch (const ConversionError &) {
    }
    return 0;
}
