#include "fcp/timeline/DocumentTime.h"

#include "core/ConversionError.h"
#include "fcp/xml/XmlDocument.h"

using namespace Qt::StringLiterals;

namespace DocumentTime {

std::optional<Rational> read(const xmlNode *element, QByteArrayView attribute)
{
    const auto text = Xml::attribute(element, attribute);
    if (!text)
        return std::nullopt;
    const auto time = Rational::parseTime(*text);
    if (!time)
        throw ConversionError(
            u"FCP 时间值无效。"_s,
            u"%1 的 %2 是“%3”。"_s.arg(Xml::place(element), QString::fromLatin1(attribute), Xml::excerpt(*text)));
    return time;
}

} // namespace DocumentTime
