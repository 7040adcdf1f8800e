#include "core/json/JsonReader.h"

#include "core/PlatformError.h"
#include "core/files/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Whether `c` stands for itself in a string.
bool isPlain(char c)
{
    return c != '"' && c != '\\' && static_cast<unsigned char>(c) >= ' ';
}

/// The first byte in [at, end) that is not plain, or `end`.
const char *skipPlain(const char *at, const char *end)
{
    constexpr quint64 ones = 0x0101'0101'0101'0101;
    constexpr quint64 high = ones * 0x80;
    // Eight bytes at once: the high bit of a byte of word - ones * n is set where the byte was below n.
    for (; end - at >= 8; at += 8) {
        quint64 word;
        std::memcpy(&word, at, sizeof word);
        const quint64 quote = word ^ (ones * '"');
        const quint64 backslash = word ^ (ones * '\\');
        const quint64 found =
            ((quote - ones) & ~quote) | ((backslash - ones) & ~backslash) | ((word - ones * ' ') & ~word);
        if ((found & high) != 0)
            break;
    }
    return std::find_if_not(at, end, isPlain);
}

/// A key behind a number that tells it from most others without a look at its bytes, which lie all over the document.
using HashedKey = std::pair<size_t, QByteArrayView>;

} // namespace

JsonReader::JsonReader(QByteArrayView document, const Check &check)
    : m_goOn(check)
    , m_begin(document.begin())
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
    const auto [token, isPlain] = takeNumber(expectation);
    if (isPlain) {
        qint64 value = 0;
        if (std::from_chars(token.begin(), token.end(), value).ec != std::errc())
            refuse(expectation);
        return value;
    }
    // 3.0 and 3e2 are whole; a double tells whole numbers apart up to 2^53.
    const double value = token.toByteArray().toDouble();
    constexpr double exact = 9007199254740992.0;
    const auto *const exponent = std::find_if(token.begin(), token.end(), [](char c) { return c == 'e' || c == 'E'; });
    const bool isZero = std::none_of(token.begin(), exponent, [](char c) { return c >= '1' && c <= '9'; });
    if (value != std::trunc(value) || std::abs(value) >= exact || (value == 0 && !isZero))
        refuse(expectation);
    return static_cast<qint64>(value);
}

double JsonReader::readNumber()
{
    static constexpr QStringView expectation = u"数字";
    bool ok = false;
    const double value = takeNumber(expectation).token.toByteArray().toDouble(&ok);
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
    return Utf8::decode(takeString());
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
        takeString();
        break;
    default:
        if (!takeLiteral("true") && !takeLiteral("false") && !takeLiteral("null"))
            takeNumber({});
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
    m_levels.append(
        {.key = {}, .firstKey = static_cast<qsizetype>(m_keys.size()), .unescaped = m_unescapedKeys.size()});
}

void JsonReader::close()
{
    const Level &level = m_levels.back();
    m_keys.erase(m_keys.begin() + level.firstKey, m_keys.end());
    m_unescapedKeys.resize(level.unescaped);
    m_levels.removeLast();
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

void JsonReader::nextElement()
{
    m_goOn();
    ++m_levels.back().index;
}

bool JsonReader::nextKey(bool first)
{
    m_goOn();
    Level &level = m_levels.back();
    level.key = {};
    if (atClose('}', first))
        return false;
    if (peek() != '"')
        malformed();
    level.key = takeString();
    if (!m_unescaped.isNull())
        level.key = m_unescapedKeys.emplace_back(std::move(m_unescaped));
    m_keys.push_back(level.key);
    if (peek() != ':')
        malformed();
    ++m_at;
    skipSpace();
    return true;
}

/// Checks the keys of the object that was read to its end.
void JsonReader::require(std::initializer_list<QByteArrayView> keys)
{
    const auto firstKey = m_keys.begin() + m_levels.back().firstKey;
    for (const QByteArrayView key : keys) {
        if (std::find(firstKey, m_keys.end(), key) == m_keys.end()) {
            m_levels.back().key = key;
            throw PlatformError(u"数据无法读取：缺少“"_s + path() + u"”。"_s);
        }
    }
    refuseRepeatedKey();
}

void JsonReader::refuseRepeatedKey()
{
    const auto firstKey = m_keys.begin() + m_levels.back().firstKey;
    const auto refuse = [&](QByteArrayView key) {
        m_levels.back().key = key;
        throw PlatformError(u"数据无法读取：“"_s + path() + u"”重复。"_s);
    };
    // A record's few keys are compared each with each; sorting keeps an object of a million keys from taking forever.
    constexpr auto few = 8;
    if (m_keys.end() - firstKey <= few) {
        for (auto key = firstKey; key != m_keys.end(); ++key) {
            if (std::find(firstKey, key, *key) != key)
                refuse(*key);
        }
        return;
    }
    std::vector<HashedKey> sorted;
    sorted.reserve(static_cast<size_t>(m_keys.end() - firstKey));
    std::transform(firstKey, m_keys.end(), std::back_inserter(sorted),
                   [](QByteArrayView key) { return HashedKey(qHash(key, 0), key); });
    // Any order will do that brings equal keys together.
    std::ranges::sort(sorted, [this](const HashedKey &a, const HashedKey &b) {
        m_goOn();
        return a < b;
    });
    const auto repeated = std::adjacent_find(sorted.begin(), sorted.end());
    if (repeated != sorted.end())
        refuse(repeated->second);
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
JsonReader::Number JsonReader::takeNumber(QStringView expectation)
{
    const char first = peek();
    if (first != '-' && !isDigit(first)) {
        if (expectation.isEmpty())
            malformed();
        refuse(expectation);
    }
    const char *at = first == '-' ? m_at + 1 : m_at;
    if (at != m_end && *at == '0')
        ++at;
    else
        at = digitsEnd(at);
    const char *const wholeEnd = at;
    if (at != m_end && *at == '.')
        at = digitsEnd(at + 1);
    if (at != m_end && (*at == 'e' || *at == 'E')) {
        ++at;
        if (at != m_end && (*at == '+' || *at == '-'))
            ++at;
        at = digitsEnd(at);
    }
    const QByteArrayView token(m_at, at);
    m_at = at;
    return {.token = token, .isPlain = at == wholeEnd};
}

/// The end of the digits at `at`, of which there must be one at least.
const char *JsonReader::digitsEnd(const char *at) const
{
    if (at == m_end || !isDigit(*at))
        malformed();
    return std::find_if_not(at, m_end, isDigit);
}

bool JsonReader::takeLiteral(QByteArrayView word)
{
    if (!QByteArrayView(m_at, m_end).startsWith(word))
        return false;
    m_at += word.size();
    return true;
}

/// Takes a string from its opening quote and returns it in UTF-8: a view of the document, or of m_unescaped.
QByteArrayView JsonReader::takeString()
{
    ++m_at;
    const char *const begin = m_at;
    m_at = skipPlain(m_at, m_end);
    const QByteArrayView text(begin, m_at);
    if (m_at != m_end && *m_at == '"') {
        ++m_at;
        m_unescaped = {};
        return text;
    }
    m_unescaped = unescape(text);
    return m_unescaped;
}

/// Takes the rest of a string that begins with the plain bytes `beginning`.
QByteArray JsonReader::unescape(QByteArrayView beginning)
{
    QByteArray text = beginning.toByteArray();
    while (m_at != m_end && *m_at == '\\') {
        ++m_at;
        readEscape(text);
        const char *const run = m_at;
        m_at = skipPlain(m_at, m_end);
        text.append(run, m_at - run);
    }
    if (m_at == m_end || *m_at != '"')
        malformed();
    ++m_at;
    return text;
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
