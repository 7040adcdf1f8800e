#include "fcp/texts/CaptionRole.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

std::optional<CaptionRole> CaptionRole::parse(const QString &role)
{
    static const QString key = u"?captionFormat="_s;
    const qsizetype at = role.indexOf(key);
    if (at < 0)
        return std::nullopt;
    const QString value = role.sliced(at + key.size());
    const qsizetype dot = value.indexOf(u'.');
    if (dot < 0 || dot + 1 == value.size())
        return std::nullopt;
    for (const Format format : {Format::itt, Format::srt, Format::cea608}) {
        if (value.first(dot) == formatName(format))
            return CaptionRole{.format = format, .language = value.sliced(dot + 1)};
    }
    return std::nullopt;
}

std::optional<QString> CaptionRole::knownLanguage(const QString &tag)
{
    static const QRegularExpression form(u"\\A[a-z]{2,3}(-[A-Z][a-z]{3})?(-([A-Z]{2}|[0-9]{3}))?\\z"_s);
    static const QRegularExpression traditional(u"\\Azh-(Hant|TW|HK|MO)"_s);
    if (!form.match(tag).hasMatch())
        return std::nullopt;
    if (tag != u"zh"_s && !tag.startsWith(u"zh-"_s))
        return tag;
    return traditional.match(tag).hasMatch() ? u"cmn-Hant"_s : u"cmn-Hans"_s;
}

QString CaptionRole::formatName(Format format)
{
    switch (format) {
    case Format::itt:
        return u"ITT"_s;
    case Format::srt:
        return u"SRT"_s;
    default:
        return u"CEA608"_s;
    }
}

QString CaptionRole::toText() const
{
    const QString name = format == Format::itt ? u"iTT"_s : formatName(format);
    return name + u"?captionFormat="_s + formatName(format) + u'.' + language;
}
