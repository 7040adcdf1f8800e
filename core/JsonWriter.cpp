#include "core/JsonWriter.h"

#include <QLocale>

#include <algorithm>

#include <cmath>

JsonWriter::JsonWriter(Utf8Writer &out)
    : m_out(out)
{}

JsonWriter &JsonWriter::key(QByteArrayView name)
{
    Q_ASSERT_X(m_keys.back().isNull() || QByteArrayView(m_keys.back()) < name, "JsonWriter::key", "keys out of order");
    m_keys.back() = name.toByteArray();
    beginValue();
    m_out.bytes("\"");
    m_out.bytes(name);
    m_out.bytes("\":");
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
    Q_ASSERT(std::isfinite(value));
    beginValue();
    m_out.bytes(QByteArray::number(value, 'g', QLocale::FloatingPointShortest));
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
    while (!value.isEmpty()) {
        const auto *const special =
            std::find_if(value.begin(), value.end(), [](QChar c) { return c < u' ' || c == u'"' || c == u'\\'; });
        m_out.text(value.first(special - value.begin()));
        value = value.sliced(special - value.begin());
        if (value.isEmpty())
            break;
        const char16_t c = value.front().unicode();
        value = value.sliced(1);
        if (c == u'"') {
            m_out.bytes("\\\"");
        } else if (c == u'\\') {
            m_out.bytes("\\\\");
        } else if (c == u'\n') {
            m_out.bytes("\\n");
        } else if (c == u'\t') {
            m_out.bytes("\\t");
        } else if (c == u'\r') {
            m_out.bytes("\\r");
        } else {
            m_out.bytes("\\u00");
            m_out.bytes(QByteArray::number(c, 16).rightJustified(2, '0'));
        }
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
