#include "core/json/JsonWriter.h"

#include "core/PlatformError.h"
#include "core/files/Utf8.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// Whether `unit` may stand for itself in a string.
bool standsAsItIs(char16_t unit)
{
    return unit >= u' ' && unit != u'"' && unit != u'\\';
}

char *put(QByteArrayView bytes, char *out)
{
    std::memcpy(out, bytes.data(), static_cast<size_t>(bytes.size()));
    return out + bytes.size();
}

/// Bytes that an escape takes at most.
constexpr qsizetype escapeRoom = 6;

char *putEscape(char16_t unit, char *out)
{
    switch (unit) {
    case u'"':
        return put("\\\"", out);
    case u'\\':
        return put("\\\\", out);
    case u'\n':
        return put("\\n", out);
    case u'\r':
        return put("\\r", out);
    case u'\t':
        return put("\\t", out);
    default:
        out = put("\\u00", out);
        *out++ = static_cast<char>('0' + unit / 16);
        *out++ = "0123456789abcdef"[unit % 16];
        return out;
    }
}

} // namespace

JsonWriter::JsonWriter(Utf8Writer &out)
    : m_out(out)
{}

JsonWriter &JsonWriter::key(QByteArrayView name)
{
    Q_ASSERT_X(m_keys.back().isNull() || m_keys.back() < name, "JsonWriter::key", "keys out of order");
    m_keys.back() = name;
    char *out = m_out.reserve(name.size() + 4);
    if (m_comma)
        *out++ = ',';
    *out++ = '"';
    out = put(name, out);
    out = put("\":", out);
    m_out.advance(out);
    m_comma = false;
    return *this;
}

void JsonWriter::integer(qint64 value)
{
    beginValue();
    m_out.number(value);
}

void JsonWriter::number(double value)
{
    if (!std::isfinite(value))
        throw PlatformError(u"数据无法写入：数字超出范围。"_s);
    beginValue();
    // Plain digits as far as people write numbers so; beyond, an exponent is shorter and says the same.
    const double magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e16);
    m_out.bytes(QByteArray::number(value, isPlain ? 'f' : 'g', QLocale::FloatingPointShortest));
}

void JsonWriter::boolean(bool value)
{
    beginValue();
    m_out.bytes(value ? QByteArrayView("true") : QByteArrayView("false"));
}

void JsonWriter::text(QStringView value)
{
    beginValue();
    m_out.bytes("\"");
    const char16_t *at = value.utf16();
    const char16_t *const end = at + value.size();
    while (at != end) {
        const char16_t *const special = std::find_if_not(at, end, standsAsItIs);
        const QStringView plain(at, special);
        char *out = Utf8::encode(plain, m_out.reserve(Utf8::encodedRoom(plain.size()) + escapeRoom));
        at = special;
        if (at != end)
            out = putEscape(*at++, out);
        m_out.advance(out);
    }
    m_out.bytes("\"");
}

void JsonWriter::beginObject()
{
    beginValue();
    m_out.bytes("{");
    m_comma = false;
    m_keys.emplace_back();
}

void JsonWriter::endObject()
{
    m_out.bytes("}");
    m_comma = true;
    m_keys.pop_back();
}

void JsonWriter::beginArray()
{
    beginValue();
    m_out.bytes("[");
    m_comma = false;
}

void JsonWriter::endArray()
{
    m_out.bytes("]");
    m_comma = true;
}

void JsonWriter::beginValue()
{
    if (m_comma)
        m_out.bytes(",");
    m_comma = true;
}
