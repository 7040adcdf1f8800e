#include "core/files/Utf8.h"

#include <cstring>

namespace Utf8 {

namespace {

constexpr quint64 highBits = 0x8080'8080'8080'8080;

quint8 byteAt(const char *p)
{
    return static_cast<quint8>(*p);
}

bool isContinuation(quint8 byte)
{
    return (byte & 0xC0) == 0x80;
}

const char *skipAscii(const char *p, const char *end)
{
    while (end - p >= 8) {
        quint64 word;
        std::memcpy(&word, p, sizeof word);
        if ((word & highBits) != 0)
            break;
        p += 8;
    }
    while (p != end && byteAt(p) < 0x80)
        ++p;
    return p;
}

/// Length of the well-formed multi-byte sequence at `p`, 0 when it is none.
qsizetype sequenceLength(const char *p, const char *end)
{
    const quint8 lead = byteAt(p);
    const auto left = end - p;
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (left < 3 || !isContinuation(byteAt(p + 1)) || !isContinuation(byteAt(p + 2)))
            return 0;
        const quint8 second = byteAt(p + 1);
        const bool overlong = lead == 0xE0 && second < 0xA0;
        const bool surrogate = lead == 0xED && second > 0x9F;
        return overlong || surrogate ? 0 : 3;
    }
    if (lead >= 0xC2 && lead <= 0xDF)
        return left >= 2 && isContinuation(byteAt(p + 1)) ? 2 : 0;
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (left < 4)
            return 0;
        const quint8 second = byteAt(p + 1);
        const bool overlong = lead == 0xF0 && second < 0x90;
        const bool beyond = lead == 0xF4 && second > 0x8F;
        const bool complete = isContinuation(second) && isContinuation(byteAt(p + 2)) && isContinuation(byteAt(p + 3));
        return complete && !overlong && !beyond ? 4 : 0;
    }
    return 0;
}

char *put(char32_t character, char *out)
{
    const auto low = [&](int shift) { return static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) {
        *out++ = static_cast<char>(character);
    } else if (character < 0x800) {
        *out++ = static_cast<char>(0xC0 | (character >> 6));
        *out++ = low(0);
    } else if (character < 0x10000) {
        *out++ = static_cast<char>(0xE0 | (character >> 12));
        *out++ = low(6);
        *out++ = low(0);
    } else {
        *out++ = static_cast<char>(0xF0 | (character >> 18));
        *out++ = low(12);
        *out++ = low(6);
        *out++ = low(0);
    }
    return out;
}

/// Passes over characters of U+1000 to U+CFFF and U+E000 to U+EFFF, in which Chinese lies: three bytes that need no
/// look at their neighbours.
const char *skipCommonTriples(const char *p, const char *end)
{
    while (end - p >= 4) {
        const quint8 lead = byteAt(p);
        if (lead <= 0xE0 || lead >= 0xEF || lead == 0xED || !isContinuation(byteAt(p + 1)) ||
            !isContinuation(byteAt(p + 2)))
            break;
        p += 3;
    }
    return p;
}

char16_t *decodeTo(char16_t *out, QByteArrayView valid)
{
    const char *p = valid.begin();
    const char *const end = valid.end();
    while (p != end) {
        const char32_t lead = byteAt(p);
        const auto tail = [&](int index) { return static_cast<char32_t>(byteAt(p + index) & 0x3F); };
        if (lead < 0x80) {
            *out++ = static_cast<char16_t>(lead);
            p += 1;
        } else if (lead < 0xE0) {
            *out++ = static_cast<char16_t>((lead & 0x1F) << 6 | tail(1));
            p += 2;
        } else if (lead < 0xF0) {
            *out++ = static_cast<char16_t>((lead & 0x0F) << 12 | tail(1) << 6 | tail(2));
            p += 3;
        } else {
            const char32_t character = (lead & 0x07) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3);
            *out++ = QChar::highSurrogate(character);
            *out++ = QChar::lowSurrogate(character);
            p += 4;
        }
    }
    return out;
}

} // namespace

Survey survey(QByteArrayView bytes)
{
    Survey result;
    const char *p = bytes.begin();
    const char *const end = bytes.end();
    while ((p = skipAscii(p, end)) != end) {
        // Text of one script comes in runs: stay here until the next ASCII byte.
        do {
            p = skipCommonTriples(p, end);
            if (p == end || byteAt(p) < 0x80)
                break;
            const qsizetype length = sequenceLength(p, end);
            if (length == 0) {
                result.valid = false;
                return result;
            }
            if (byteAt(p) == 0xEF && byteAt(p + 1) == 0xBB && byteAt(p + 2) == 0xBF)
                result.hasMark = true;
            p += length;
        } while (p != end && byteAt(p) >= 0x80);
    }
    return result;
}

QString decode(QByteArrayView valid)
{
    // A text never has more UTF-16 units than bytes. Short ones, nearly all, go through warm memory on the stack, and
    // the string is made when its length is known.
    constexpr qsizetype shortText = 512;
    if (valid.size() <= shortText) {
        char16_t units[shortText];
        return QString(reinterpret_cast<const QChar *>(units), decodeTo(units, valid) - units);
    }
    QString text(valid.size(), Qt::Uninitialized);
    auto *const units = reinterpret_cast<char16_t *>(text.data());
    text.truncate(decodeTo(units, valid) - units);
    text.squeeze();
    return text;
}

char *encode(QStringView text, char *out)
{
    const char16_t *p = text.utf16();
    const char16_t *const end = p + text.size();
    while (p != end) {
        const char16_t unit = *p++;
        if (unit < 0x80) {
            *out++ = static_cast<char>(unit);
        } else if (!QChar::isSurrogate(unit)) {
            out = put(unit, out);
        } else if (QChar::isHighSurrogate(unit) && p != end && QChar::isLowSurrogate(*p)) {
            out = put(QChar::surrogateToUcs4(unit, *p++), out);
        } else {
            out = put(QChar::ReplacementCharacter, out);
        }
    }
    return out;
}

qsizetype leadingSpace(QByteArrayView valid)
{
    if (valid.isEmpty())
        return 0;
    const char *const p = valid.begin();
    const quint8 lead = byteAt(p);
    if (lead < 0x80)
        return lead == ' ' || (lead >= '\t' && lead <= '\r') ? 1 : 0;
    if (lead > 0xE3)
        return 0;
    // Only these four lead bytes begin a white space character above U+007F.
    if (lead == 0xC2)
        return byteAt(p + 1) == 0x85 || byteAt(p + 1) == 0xA0 ? 2 : 0;
    if (lead == 0xE1 || lead == 0xE2 || lead == 0xE3) {
        const char32_t character = static_cast<char32_t>(lead & 0x0F) << 12 |
                                   static_cast<char32_t>(byteAt(p + 1) & 0x3F) << 6 |
                                   static_cast<char32_t>(byteAt(p + 2) & 0x3F);
        return QChar::isSpace(character) ? 3 : 0;
    }
    return 0;
}

qsizetype trailingSpace(QByteArrayView valid)
{
    qsizetype at = valid.size();
    if (at > 0 && byteAt(valid.data() + at - 1) < 0x80)
        return leadingSpace(valid.last(1));
    while (at > 0 && isContinuation(byteAt(valid.data() + at - 1)))
        --at;
    return at > 0 ? leadingSpace(valid.sliced(at - 1)) : 0;
}

QByteArrayView trimmed(QByteArrayView valid)
{
    while (const qsizetype length = leadingSpace(valid))
        valid = valid.sliced(length);
    while (const qsizetype length = trailingSpace(valid))
        valid.chop(length);
    return valid;
}

} // namespace Utf8
