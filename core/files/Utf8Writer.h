#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

/// Builds UTF-8 output in one warm block and hands every full block on.
///
/// Documents of a hundred megabytes are written through it without ever standing in memory. finish() hands on the rest;
/// without it the last block is lost, so that an error on the way leaves nothing half-said.
class Utf8Writer
{
public:
    /// Takes each block in order. What it throws passes through the writer's calls.
    using Sink = std::function<void(QByteArrayView)>;

    explicit Utf8Writer(Sink sink);

    void bytes(QByteArrayView utf8); ///< Takes well-formed UTF-8 as it stands.
    void text(QStringView text);     ///< A lone surrogate becomes U+FFFD.
    void number(qint64 value);       ///< Decimal, with a minus sign where it is negative.
    void finish();

    /// Room for `size` bytes that the caller fills from the front; advance() says where it stopped.
    char *reserve(qsizetype size);
    void advance(const char *end) { m_used = end - m_block.get(); }

private:
    static constexpr qsizetype blockSize = 256 * 1024;

    void flush();

    Sink m_sink;
    std::unique_ptr<char[]> m_block;
    qsizetype m_capacity = blockSize;
    qsizetype m_used = 0;
};
