#include "fcp/timeline/MediaAsset.h"

#include "fcp/timeline/DocumentTime.h"
#include "fcp/xml/XmlDocument.h"

using namespace Qt::StringLiterals;

namespace {

bool hasSound(const xmlNode *asset)
{
    if (const auto stated = Xml::attribute(asset, "hasAudio"))
        return *stated != "0";
    return Xml::attribute(asset, "hasVideo") != "1";
}

std::optional<QUrl> fileUrl(const QByteArray &source)
{
    if (source.isEmpty())
        return std::nullopt;
    QUrl url(QString::fromUtf8(source), QUrl::TolerantMode);
    // A path that stands alone is meant from the root; a relative one has no folder here.
    if (url.scheme().isEmpty() && url.path().startsWith(u'/'))
        url = QUrl(u"file:///"_s).resolved(url);
    if (url.host() == u"localhost")
        url.setHost(QString());
    if (!url.isValid() || !url.isLocalFile() || url.path().isEmpty())
        return std::nullopt;
    return url;
}

/// The first file named by representations of that kind.
std::optional<QUrl> representation(const xmlNode *asset, QByteArrayView kind)
{
    for (const xmlNode *const each : Xml::Children(asset)) {
        if (!Xml::isElement(each, "media-rep") || Xml::attribute(each, "kind").value_or("original-media") != kind)
            continue;
        if (auto url = fileUrl(Xml::attribute(each, "src").value_or(QByteArray())))
            return url;
    }
    return std::nullopt;
}

std::optional<QUrl> file(const xmlNode *asset)
{
    if (auto original = representation(asset, "original-media"))
        return original;
    // Versions up to 1.8 name the file on the asset itself.
    if (auto direct = fileUrl(Xml::attribute(asset, "src").value_or(QByteArray())))
        return direct;
    return representation(asset, "proxy-media");
}

} // namespace

MediaAsset MediaAsset::read(const xmlNode *asset)
{
    if (!::hasSound(asset)) {
        // Its length still says where what follows it begins; a time that cannot be read matters to nobody.
        const auto length = Rational::parseTime(Xml::attribute(asset, "duration").value_or(QByteArray()));
        return {.duration = length && *length > 0 ? length : std::nullopt};
    }
    MediaAsset result{.hasSound = true,
                      .start = DocumentTime::read(asset, "start").value_or(0),
                      .duration = DocumentTime::read(asset, "duration"),
                      .file = ::file(asset)};
    // Writers that do not know the length state 0.
    if (result.duration && *result.duration <= 0)
        result.duration.reset();
    return result;
}
