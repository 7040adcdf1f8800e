#include "core/JsonReader.h"

#include "core/PlatformError.h"
#include "core/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isIn(QByteArrayView set, char c)
{
    return set.contains(c);
}

} // namespace

JsonReader::JsonReader(QByteArrayView document)
    : m_begin(document.begin())
    , m_at(document.begin())
    , m_end(document.end())
{
    if (!Utf8::survey(document).valid)
        throw PlatformError(u"数据无法读取：不是有效的 UTF-8。"_s);
    if (document.startsWith("\xEF\xBB\xBF"))
        m_at += 3;
}

qint64 JsonReader::readInteger()
{
    static constexpr QStringView expectation = u"64 位整数";
    const QByteArrayView token = numberToken(expectation);
    if (std::none_of(token.begin(), token.end(), [](char c) { return isIn(".eE", c); })) {
        qint64 value = 0;
        if (std::from_chars(token.begin(), token.end(), value).ec != std::errc())
            refuse(expectation);
        return value;
    }
    // 3.0 and 3e2 are whole; a double tells whole numbers apart up to 2^53.
    const double value = token.toByteArray().toDouble();
    constexpr double exact = 9007199254740992.0;
    if (value != std::trunc(value) || std::abs(value) > exact)
        refuse(expectation);
    return static_cast<qint64>(value);
}

double JsonReader::readNumber()
{
    static constexpr QStringView expectation = u"数字";
    bool ok = false;
    const double value = numberToken(expectation).toByteArray().toDouble(&ok);
    if (!ok || !std::isfinite(value))
        refuse(expectation);
    return value;
}

bool JsonReader::readBoolean()
{
    skipSpace();
    if (takeLiteral("true"))
        return true;
    if (takeLiteral("false"))
        return false;
    refuse(u"布尔值");
}

QString JsonReader::readText()
{
    if (peek() != '"')
        refuse(u"文字");
    return Utf8::decode(readString());
}

bool JsonReader::readNull()
{
    skipSpace();
    return takeLiteral("null");
}

void JsonReader::skip()
{
    switch (peek()) {
    case '{':
        readObject({}, [](QByteArrayView) {});
        break;
    case '[':
        readArray([] {});
        break;
    case '"':
        readString();
        break;
    default:
        if (!takeLiteral("true") && !takeLiteral("false") && !takeLiteral("null"))
            numberToken({});
    }
}

void JsonReader::finish()
{
    skipSpace();
    if (m_at != m_end)
        malformed();
}

void JsonReader::refuse(QStringView expectation) const
{
    if (m_at == m_end && !m_levels.isEmpty())
        malformed();
    const QString place = path();
    const QString subject = place.isEmpty() ? u"最外层"_s : u"“%1”"_s.arg(place);
    throw PlatformError(u"数据无法读取：%1应为%2。"_s.arg(subject, expectation));
}

void JsonReader::open(char bracket, QStringView expectation)
{
    if (peek() != bracket)
        refuse(expectation);
    if (m_levels.size() == maxDepth)
        throw PlatformError(u"数据无法读取：嵌套过深。"_s);
    ++m_at;
    m_levels.append({.key = {}, .index = -1, .firstKey = static_cast<qsizetype>(m_keys.size())});
}

bool JsonReader::atClose(char bracket, bool first)
{
    const char next = peek();
    if (next == bracket) {
        ++m_at;
        return true;
    }
    if (!first) {
        if (next != ',')
            malformed();
        ++m_at;
    }
    return false;
}

bool JsonReader::nextKey(bool first)
{
    Level &level = m_levels.back();
    level.key.clear();
    if (atClose('}', first))
        return false;
    if (peek() != '"')
        malformed();
    level.key = readString();
    m_keys.push_back(level.key);
    if (peek() != ':')
        malformed();
    ++m_at;
    skipSpace();
    return true;
}

void JsonReader::require(std::initializer_list<QByteArrayView> keys)
{
    const auto firstKey = m_keys.begin() + m_levels.back().firstKey;
    for (const QByteArrayView key : keys) {
        if (std::find(firstKey, m_keys.end(), key) == m_keys.end()) {
            m_levels.back().key = key.toByteArray();
            throw PlatformError(u"数据无法读取：缺少“"_s + path() + u"”。"_s);
        }
    }
    // Sorting finds a repeated key in an object of any size; small objects, the common case, take nanoseconds.
    std::sort(firstKey, m_keys.end());
    const auto repeated = std::adjacent_find(firstKey, m_keys.end());
    if (repeated != m_keys.end()) {
        m_levels.back().key = *repeated;
        throw PlatformError(u"数据无法读取：“"_s + path() + u"”重复。"_s);
    }
    m_keys.erase(firstKey, m_keys.end());
}

void JsonReader::skipSpace()
{
    while (m_at != m_end && (*m_at == ' ' || *m_at == '\n' || *m_at == '\t' || *m_at == '\r'))
        ++m_at;
}

char JsonReader::peek()
{
    skipSpace();
    // The zero at the end of the input is no character of JSON's grammar, like a zero in the input.
    return m_at == m_end ? '\0' : *m_at;
}

/// Takes a number of JSON's grammar: no leading zero or plus, digits on both sides of the point.
QByteArrayView JsonReader::numberToken(QStringView expectation)
{
    const char first = peek();
    if (first != '-' && !isDigit(first)) {
        if (expectation.isEmpty())
            malformed();
        refuse(expectation);
    }
    const char *at = m_at;
    const auto is = [&](QByteArrayView set) { return at != m_end && isIn(set, *at); };
    const auto digits = [&] {
        if (at == m_end || !isDigit(*at))
            malformed();
        while (at != m_end && isDigit(*at))
            ++at;
    };
    if (is("-"))
        ++at;
    if (is("0"))
        ++at;
    else
        digits();
    if (is(".")) {
        ++at;
        digits();
    }
    if (is("eE")) {
        ++at;
        if (is("+-"))
            ++at;
        digits();
    }
    const QByteArrayView token(m_at, at);
    m_at = at;
    return token;
}

bool JsonReader::takeLiteral(QByteArrayView word)
{
    if (!QByteArrayView(m_at, m_end).startsWith(word))
        return false;
    m_at += word.size();
    return true;
}

/// Takes a string from its opening quote and returns it in UTF-8.
QByteArray JsonReader::readString()
{
    ++m_at;
    QByteArray text;
    for (const char *run = m_at; m_at != m_end;) {
        const char c = *m_at;
        if (c == '"') {
            text.append(run, m_at - run);
            ++m_at;
            return text;
        }
        if (c == '\\') {
            text.append(run, m_at - run);
            ++m_at;
            readEscape(text);
            run = m_at;
        } else if (c >= 0 && c < ' ') {
            malformed();
        } else {
            ++m_at;
        }
    }
    malformed();
}

void JsonReader::readEscape(QByteArray &text)
{
    if (m_at == m_end)
        malformed();
    static constexpr QByteArrayView letters = "\"\\/bfnrt";
    static constexpr QByteArrayView meanings = "\"\\/\b\f\n\r\t";
    const char letter = *m_at++;
    if (const qsizetype index = letters.indexOf(letter); index >= 0) {
        text.append(meanings[index]);
        return;
    }
    if (letter != 'u')
        malformed();
    char16_t units[2] = {readHex(), 0};
    qsizetype count = 1;
    if (QChar::isSurrogate(units[0])) {
        if (!QChar::isHighSurrogate(units[0]) || !takeLiteral("\\u"))
            malformed();
        units[1] = readHex();
        if (!QChar::isLowSurrogate(units[1]))
            malformed();
        count = 2;
    }
    text.append(QStringView(units, count).toUtf8());
}

char16_t JsonReader::readHex()
{
    quint16 value = 0;
    constexpr qsizetype digits = 4;
    if (m_end - m_at < digits || std::from_chars(m_at, m_at + digits, value, 16).ptr != m_at + digits)
        malformed();
    m_at += digits;
    return value;
}

QString JsonReader::path() const
{
    QString result;
    for (const Level &level : m_levels) {
        if (level.index >= 0) {
            result += u'[' + QString::number(level.index) + u']';
        } else if (!level.key.isNull()) {
            if (!result.isEmpty())
                result += u'.';
            result += QString::fromUtf8(level.key);
        }
    }
    return result;
}

void JsonReader::malformed() const
{
    throw PlatformError(u"数据无法读取：第 "_s + QString::number(m_at - m_begin + 1) + u" 字节处的 JSON 格式有误。"_s);
}
