#pragma once

#include <QUuid>

#include <optional>

class JsonReader;
class JsonWriter;

/// The canonical textual form of a UUID: 8-4-4-4-12 hexadecimal digits, without braces.
namespace Uuid {

/// Reads the canonical form in either case, and nothing looser.
std::optional<QUuid> parse(QStringView text);

/// The canonical form in upper case.
QString text(const QUuid &uuid);

/// @throws PlatformError naming the key path of what is no UUID.
QUuid read(JsonReader &json);
void write(JsonWriter &json, const QUuid &uuid);

} // namespace Uuid
