#include "app/Lintora/look/FontFaces.h"

using namespace Qt::StringLiterals;

namespace FontFaces {

QString shown(const std::optional<QString> &kept)
{
    return kept.value_or(u"Regular"_s);
}

std::optional<QString> kept(const QString &shown)
{
    return shown == u"Regular"_s ? std::nullopt : std::optional(shown);
}

QString best(const QStringList &faces, const QString &wanted)
{
    if (faces.isEmpty())
        return u"Regular"_s;
    if (faces.contains(wanted))
        return wanted;
    for (const QString &plain : {u"Regular"_s, u"常规体"_s, u"Normal"_s, u"Book"_s, u"Roman"_s, u"Medium"_s}) {
        if (faces.contains(plain))
            return plain;
    }
    return faces.first();
}

} // namespace FontFaces
