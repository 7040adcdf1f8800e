#include "app/model/FCPPasteboard.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace FCPPasteboard {

const QStringList &fcpTypes()
{
    static const QStringList types = [] {
        constexpr int newest = 14; // minor versions of FCPXML 1 that the program has offered its documents under
        constexpr int oldest = 8;
        QStringList list;
        for (int version = newest; version >= oldest; --version)
            list += u"com.apple.finalcutpro.xml.v1-%1"_s.arg(version);
        list += u"com.apple.finalcutpro.xml"_s;
        return list;
    }();
    return types;
}

std::optional<QString> offeredType(const QMimeData &pasteboard)
{
    const auto offered =
        std::ranges::find_if(fcpTypes(), [&](const QString &type) { return pasteboard.hasFormat(type); });
    return offered == fcpTypes().end() ? std::nullopt : std::optional(*offered);
}

std::unique_ptr<QMimeData> offering(const QByteArray &document)
{
    auto pasteboard = std::make_unique<QMimeData>();
    for (const QString &type : fcpTypes())
        pasteboard->setData(type, document);
    return pasteboard;
}

} // namespace FCPPasteboard
