#pragma once

#include "core/files/Utf8Writer.h"

#include <vector>

/// Writes JSON whose bytes are a function of the values alone: compact, keys in the order of their bytes, text
/// unescaped but for what JSON forbids, doubles in their shortest form that reads back the same (whole ones without
/// ".0").
///
/// The caller names keys in ascending order; a slip is an assertion. Values are written in the order of the calls:
/// `json.key("id").integer(1)`.
class JsonWriter
{
public:
    explicit JsonWriter(Utf8Writer &out);

    JsonWriter &key(QByteArrayView name); ///< Plain ASCII, ascending within the object, and outliving it.
    void integer(qint64 value);
    void number(double value); ///< @throws PlatformError when it is not finite, for which JSON has no form.
    void boolean(bool value);
    void text(QStringView value);

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();

private:
    void beginValue();

    Utf8Writer &m_out;
    bool m_comma = false;               ///< Whether a value stands before the next one.
    std::vector<QByteArrayView> m_keys; ///< The last key of each open object, for the assertion on their order.
};

/// The JSON document that `write` produces, as bytes.
template <class Write>
QByteArray jsonBytes(Write &&write)
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    JsonWriter json(out);
    write(json);
    out.finish();
    return bytes;
}
