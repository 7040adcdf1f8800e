#include "fcp/ColorText.h"

#include <QList>

#include <algorithm>

namespace ColorText {

std::optional<Channels> read(QStringView text)
{
    const QList<QStringView> parts = text.split(u' ');
    Channels channels{};
    if (parts.size() != qsizetype(channels.size()))
        return std::nullopt;
    for (size_t i = 0; i < channels.size(); ++i) {
        const QStringView part = parts[qsizetype(i)];
        // Reading a number passes over white space around it, which is no part of a colour.
        const bool hasSpace = std::ranges::any_of(part, [](QChar c) { return c.isSpace(); });
        bool isNumber = false;
        const double value = part.toDouble(&isNumber);
        // Written so that what is no number fails too.
        if (!isNumber || hasSpace || !(value >= 0 && value <= 1))
            return std::nullopt;
        channels[i] = value;
    }
    return channels;
}

} // namespace ColorText
