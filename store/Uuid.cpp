#include "store/Uuid.h"

#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <algorithm>

namespace Uuid {

namespace {

bool isHexDigit(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

} // namespace

std::optional<QUuid> parse(QStringView text)
{
    // QUuid itself reads braces, and passes over what follows the last digit.
    static constexpr QStringView form = u"00000000-0000-0000-0000-000000000000";
    const auto matches = [](QChar c, QChar formed) { return formed == u'-' ? c == u'-' : isHexDigit(c); };
    if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), matches))
        return std::nullopt;
    return QUuid::fromString(text);
}

QString text(const QUuid &uuid)
{
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

QUuid read(JsonReader &json)
{
    const std::optional<QUuid> uuid = parse(json.readText());
    if (!uuid)
        json.refuse(u" UUID");
    return *uuid;
}

void write(JsonWriter &json, const QUuid &uuid)
{
    json.text(text(uuid));
}

} // namespace Uuid
