#include "core/files/Utf8Writer.h"

#include "core/files/Utf8.h"

#include <charconv>
#include <cstring>
#include <utility>

Utf8Writer::Utf8Writer(Sink sink)
    : m_sink(std::move(sink))
    , m_block(new char[static_cast<size_t>(blockSize)])
{}

void Utf8Writer::bytes(QByteArrayView utf8)
{
    char *const out = reserve(utf8.size());
    if (!utf8.isEmpty())
        std::memcpy(out, utf8.data(), static_cast<size_t>(utf8.size()));
    advance(out + utf8.size());
}

void Utf8Writer::text(QStringView text)
{
    advance(Utf8::encode(text, reserve(Utf8::encodedRoom(text.size()))));
}

void Utf8Writer::number(qint64 value)
{
    constexpr qsizetype longest = 20;
    char *const out = reserve(longest);
    advance(std::to_chars(out, out + longest, value).ptr);
}

void Utf8Writer::finish()
{
    flush();
}

char *Utf8Writer::reserve(qsizetype size)
{
    if (m_capacity - m_used < size) {
        flush();
        if (m_capacity < size) {
            m_block.reset(new char[static_cast<size_t>(size)]);
            m_capacity = size;
        }
    }
    return m_block.get() + m_used;
}

void Utf8Writer::flush()
{
    const qsizetype size = std::exchange(m_used, 0);
    if (size > 0)
        m_sink(QByteArrayView(m_block.get(), size));
}
