#include "fcp/xml/XmlGuard.h"

#include <QByteArray>

#include <algorithm>
#include <array>

namespace XmlGuard {

namespace {

constexpr int mostAttributes = 250;

/// How many bytes a character of XML's own signs takes, and which of them is not zero.
struct Encoding
{
    int width;
    int position;
};

Encoding encodingOf(QByteArrayView bytes)
{
    struct Start
    {
        QByteArrayView bytes;
        Encoding encoding;
    };
    // A byte order mark, or the first "<" where there is none; the longer ones first.
    static constexpr std::array starts{
        Start{QByteArrayView("\xFF\xFE\0\0", 4), {4, 0}}, Start{QByteArrayView("\0\0\xFE\xFF", 4), {4, 3}},
        Start{QByteArrayView("<\0\0\0", 4), {4, 0}},      Start{QByteArrayView("\0\0\0<", 4), {4, 3}},
        Start{QByteArrayView("\xFF\xFE", 2), {2, 0}},     Start{QByteArrayView("\xFE\xFF", 2), {2, 1}},
        Start{QByteArrayView("<\0", 2), {2, 0}},          Start{QByteArrayView("\0<", 2), {2, 1}},
    };
    const auto *const start =
        std::find_if(starts.begin(), starts.end(), [&](const Start &each) { return bytes.startsWith(each.bytes); });
    return start == starts.end() ? Encoding{1, 0} : start->encoding;
}

/// `text` as an encoding of that kind stores it.
QByteArray widened(QByteArrayView text, Encoding encoding)
{
    QByteArray result(text.size() * encoding.width, '\0');
    for (qsizetype i = 0; i < text.size(); ++i)
        result[i * encoding.width + encoding.position] = text[i];
    return result;
}

/// The name in the XML declaration, upper case, empty when there is none.
QByteArray declaredEncoding(QByteArrayView bytes)
{
    const QByteArray head = bytes.first(std::min<qsizetype>(bytes.size(), 256)).toByteArray();
    const QByteArray declaration = head.left(head.indexOf("?>"));
    const qsizetype key = declaration.indexOf("encoding");
    const qsizetype open = declaration.indexOf(declaration.mid(key).contains('"') ? '"' : '\'', key);
    if (!declaration.startsWith("<?xml") || key < 0 || open < 0)
        return {};
    const qsizetype close = declaration.indexOf(declaration[open], open + 1);
    return declaration.mid(open + 1, close - open - 1).toUpper();
}

/// Whether the signs of XML's grammar stand in the bytes as in ASCII, and no byte of another character looks like them.
bool keepsAscii(QByteArrayView bytes)
{
    static constexpr std::array<QByteArrayView, 12> families{"UTF-8",     "UTF8",     "US-ASCII", "ASCII",
                                                             "ISO-8859-", "WINDOWS-", "GB2312",   "GBK",
                                                             "GB18030",   "BIG5",     "EUC-",     "SHIFT_JIS"};
    const QByteArray name = declaredEncoding(bytes);
    const bool isKnown = name.isEmpty() || std::any_of(families.begin(), families.end(),
                                                       [&](QByteArrayView family) { return name.startsWith(family); });
    const bool startsPlain =
        bytes.startsWith("\xEF\xBB\xBF") || (!bytes.isEmpty() && static_cast<quint8>(bytes.front()) < 0x40);
    return isKnown && startsPlain;
}

/// Counts what may be attributes, an equals sign and a quote, from one "<" to the next. A tag holds no "<" but its
/// first character, so none has more attributes than are counted, whatever comments and quoted text stand around it.
class TagScanner
{
public:
    /// Takes the next character. Returns false once there are too many attributes.
    bool take(char c)
    {
        if (c == '<') {
            m_attributes = 0;
        } else if (c == '=') {
            m_equals = true;
        } else if (c != ' ' && c != '\n' && c != '\t' && c != '\r') {
            m_attributes += m_equals && (c == '"' || c == '\'') ? 1 : 0;
            m_equals = false;
        }
        return m_attributes <= mostAttributes;
    }

private:
    bool m_equals = false;
    int m_attributes = 0;
};

/// The same of a text of one byte a character: only where two "<" lie far apart is there anything to be counted.
bool hasOverlongTagOfBytes(QByteArrayView bytes)
{
    constexpr qsizetype shortest = mostAttributes * 4; // a='' each
    for (qsizetype begin = 0, next = 0; begin < bytes.size(); begin = next) {
        next = bytes.indexOf('<', begin + 1);
        if (next < 0)
            next = bytes.size();
        if (next - begin <= shortest)
            continue;
        TagScanner scanner;
        const QByteArrayView between = bytes.sliced(begin, next - begin);
        if (!std::all_of(between.begin(), between.end(), [&](char c) { return scanner.take(c); }))
            return true;
    }
    return false;
}

} // namespace

bool mentionsEntity(QByteArrayView bytes)
{
    static constexpr QByteArrayView declaration = "<!ENTITY";
    if (bytes.contains(declaration))
        return true;
    // Only texts that are not one byte a character hold zeros.
    return bytes.contains('\0') &&
           (bytes.contains(widened(declaration, {2, 0})) || bytes.contains(widened(declaration, {2, 1})) ||
            bytes.contains(widened(declaration, {4, 0})) || bytes.contains(widened(declaration, {4, 3})));
}

bool hasOverlongTag(QByteArrayView bytes)
{
    const Encoding encoding = encodingOf(bytes);
    if (encoding.width == 1 && !keepsAscii(bytes)) {
        // No document that we know is written so. Up to this size even the worst one takes a second.
        constexpr qsizetype harmless = 64 * 1024;
        return bytes.size() > harmless;
    }
    if (encoding.width == 1)
        return hasOverlongTagOfBytes(bytes);
    TagScanner scanner;
    const auto isZero = [](char c) { return c == '\0'; };
    for (qsizetype i = 0; i + encoding.width <= bytes.size(); i += encoding.width) {
        const QByteArrayView unit = bytes.sliced(i, encoding.width);
        const char low = unit[encoding.position];
        const bool isPlain = std::count_if(unit.begin(), unit.end(), isZero) == encoding.width - (low == '\0' ? 0 : 1);
        if (!scanner.take(isPlain ? low : 'x'))
            return true;
    }
    return false;
}

QByteArrayView withoutBlankEnd(QByteArrayView bytes)
{
    const Encoding encoding = encodingOf(bytes);
    const std::array blanks{widened(" ", encoding), widened("\n", encoding), widened("\r", encoding),
                            widened("\t", encoding)};
    QByteArrayView rest = bytes;
    while (std::ranges::any_of(blanks, [&](QByteArrayView blank) { return rest.endsWith(blank); }))
        rest.chop(encoding.width);
    return rest.endsWith(widened(">", encoding)) ? rest : bytes;
}

} // namespace XmlGuard
