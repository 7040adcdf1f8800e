#include "core/SRT.h"

#include "core/Failure.h"
#include "core/files/FileReader.h"
#include "core/files/Utf8.h"
#include "core/files/Utf8Writer.h"

#include <QtEndian>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>

using namespace Qt::StringLiterals;

namespace SRT {

namespace {

// The grammar, as patterns over the text (\s is Unicode's white space, \d is [0-9]):
//
//   blocks      are separated by   \n[ \t]*\n+
//   time line ^\s*(\d{1,3}):([0-5]\d):([0-5]\d)[,.](\d{3})\s*-->\s*(\d{1,3}):([0-5]\d):([0-5]\d)[,.](\d{3})(?:\s+.*)?$
//               (. is any character: lines end at line feeds alone)
//   tags        (?i)</?(?:b|i|u|font)(?:\s+[^>]*)?>
//
// The scanner below reads the same language straight from UTF-8, ten times as fast as the patterns; the tests hold it
// against them.

constexpr QChar byteOrderMark(0xFEFF);

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

[[noreturn]] void throwUndecodable(const QString &detail)
{
    throw ConversionError(u"字幕编码不支持。请先另存为 UTF-8 或 UTF-16。"_s, detail);
}

[[noreturn]] void throwUndecodableUtf16()
{
    throwUndecodable(u"文件带有 UTF-16 标记，其中却有残缺的字符。"_s);
}

/// Which line of a file is no UTF-8: in every other encoding it is the first that has more than ASCII.
[[noreturn]] void throwUndecodableUtf8(QByteArrayView bytes)
{
    qint64 line = 1;
    for (qsizetype from = 0; from < bytes.size(); ++line) {
        const qsizetype feed = bytes.indexOf('\n', from);
        const qsizetype end = feed < 0 ? bytes.size() : feed + 1;
        if (!QUtf8StringView(bytes.sliced(from, end - from)).isValidUtf8())
            break;
        from = end;
    }
    throwUndecodable(u"文件第 %1 行不是 UTF-8。"_s.arg(line));
}

const char *find(const char *from, const char *end, char c)
{
    return from == end ? nullptr : static_cast<const char *>(std::memchr(from, c, static_cast<size_t>(end - from)));
}

/// Byte order marks go, CR LF and CR become LF; in place. Few files need it.
void normalize(QByteArray &text, bool hasMark)
{
    if (hasMark)
        text.replace("\xEF\xBB\xBF", "");
    if (!text.contains('\r'))
        return;
    char *const begin = text.data();
    const char *const end = begin + text.size();
    char *out = begin;
    for (const char *p = begin; p != end;) {
        const char *const carriageReturn = find(p, end, '\r');
        const char *const runEnd = carriageReturn ? carriageReturn : end;
        std::memmove(out, p, static_cast<size_t>(runEnd - p));
        out += runEnd - p;
        p = runEnd;
        if (!carriageReturn)
            break;
        ++p;
        // Of CR LF the line feed follows by itself.
        if (p == end || *p != '\n')
            *out++ = '\n';
    }
    text.truncate(out - begin);
}

/// Takes characters from the front of a line.
class LineScanner
{
public:
    explicit LineScanner(QByteArrayView line)
        : m_at(line.begin())
        , m_end(line.end())
    {}

    bool atEnd() const { return m_at == m_end; }

    bool take(QByteArrayView word)
    {
        if (!QByteArrayView(m_at, m_end).startsWith(word))
            return false;
        m_at += word.size();
        return true;
    }

    bool takeOneOf(char first, char second)
    {
        if (m_at == m_end || (*m_at != first && *m_at != second))
            return false;
        ++m_at;
        return true;
    }

    bool take(char c) { return takeOneOf(c, c); }

    /// A decimal number of `fewest` to `most` digits.
    std::optional<int> takeNumber(int fewest, int most)
    {
        int value = 0;
        int digits = 0;
        for (; digits < most && m_at != m_end && isDigit(*m_at); ++digits)
            value = value * 10 + (*m_at++ - '0');
        return digits >= fewest ? std::optional(value) : std::nullopt;
    }

    /// Two digits of which the first is 0 to 5.
    std::optional<int> takeSixtieth()
    {
        if (m_at == m_end || *m_at > '5')
            return std::nullopt;
        return takeNumber(2, 2);
    }

    bool takeSpaces()
    {
        const char *const from = m_at;
        if (m_at != m_end && (isDigit(*m_at) || *m_at == '-'))
            return false;
        while (const qsizetype length = Utf8::leadingSpace(QByteArrayView(m_at, m_end)))
            m_at += length;
        return m_at != from;
    }

private:
    const char *m_at;
    const char *m_end;
};

/// One "H:MM:SS,mmm" in milliseconds.
std::optional<qint64> takeTime(LineScanner &line)
{
    const auto hours = line.takeNumber(1, 3);
    if (!hours || !line.take(':'))
        return std::nullopt;
    const auto minutes = line.takeSixtieth();
    if (!minutes || !line.take(':'))
        return std::nullopt;
    const auto seconds = line.takeSixtieth();
    if (!seconds || !line.takeOneOf(',', '.'))
        return std::nullopt;
    const auto milliseconds = line.takeNumber(3, 3);
    if (!milliseconds)
        return std::nullopt;
    return ((qint64(*hours) * 60 + *minutes) * 60 + *seconds) * 1000 + *milliseconds;
}

struct TimeLine
{
    qint64 start;
    qint64 end;
};

std::optional<TimeLine> readTimeLine(QByteArrayView text)
{
    LineScanner line(text);
    line.takeSpaces();
    const auto start = takeTime(line);
    if (!start)
        return std::nullopt;
    line.takeSpaces();
    if (!line.take("-->"))
        return std::nullopt;
    line.takeSpaces();
    const auto end = takeTime(line);
    // Position and style hints may follow, set off by white space.
    if (!end || (!line.atEnd() && !line.takeSpaces()))
        return std::nullopt;
    return TimeLine{.start = *start, .end = *end};
}

/// A sequence number: its value does not matter, only that it is a decimal number within 64 bits.
bool isSequenceNumber(QByteArrayView line)
{
    constexpr qsizetype surelyInRange = 18;
    if (line.size() <= surelyInRange && !line.isEmpty() && std::all_of(line.begin(), line.end(), isDigit))
        return true;
    while (!line.isEmpty()) {
        // Line breaks are no part of the trimmed set here, unlike all other white space.
        const qsizetype length = Utf8::trailingSpace(line);
        const QByteArrayView last = line.last(length);
        const bool isBreak =
            last == "\x0B" || last == "\x0C" || last == "\xC2\x85" || last == "\xE2\x80\xA8" || last == "\xE2\x80\xA9";
        if (length == 0 || isBreak)
            break;
        line.chop(length);
    }
    if (line.startsWith('+')) {
        line = line.sliced(1);
        if (line.startsWith('-'))
            return false;
    }
    qint64 value = 0;
    const auto [stop, error] = std::from_chars(line.begin(), line.end(), value);
    return error == std::errc() && stop == line.end();
}

/// The length of the formatting tag at `at`, 0 when there is none. `noClose` remembers that no ">" follows, so that
/// text full of "<b " is read once and not again and again.
qsizetype tagLength(const char *at, const char *end, bool &noClose)
{
    const char *p = at + 1;
    if (p != end && *p == '/')
        ++p;
    const auto startsWith = [&](QByteArrayView name) {
        return end - p >= name.size() &&
               std::equal(name.begin(), name.end(), p, [](char a, char b) { return a == (b | 0x20); });
    };
    if (startsWith("font"))
        p += 4;
    else if (startsWith("b") || startsWith("i") || startsWith("u"))
        p += 1;
    else
        return 0;
    if (p != end && *p == '>')
        return p + 1 - at;
    if (noClose || Utf8::leadingSpace(QByteArrayView(p, end)) == 0)
        return 0;
    const char *const close = find(p, end, '>');
    noClose = !close;
    return close ? close + 1 - at : 0;
}

struct Entity
{
    QByteArrayView name;
    char meaning;
};

// One pass from left to right decodes what replacing one entity after the other would, the ampersand last.
constexpr Entity entities[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}};

bool isControl(char c)
{
    return static_cast<quint8>(c) < ' ' && c != '\t' && c != '\n';
}

/// Whether a cue's text holds a character that a tag or an entity begins with, or one that titles cannot carry. Most do
/// not, and without a branch the compiler looks at sixteen bytes at a time.
bool hasSpecial(QByteArrayView text)
{
    unsigned found = 0;
    for (const char c : text)
        found |= unsigned(c == '<') | unsigned(c == '&') | unsigned(isControl(c));
    return found != 0;
}

/// Removes tags, then decodes entities. `scratch` is reused from cue to cue.
QByteArrayView plainText(QByteArrayView text, QByteArray &scratch)
{
    if (find(text.begin(), text.end(), '<')) {
        QByteArray kept;
        bool noClose = false;
        for (const char *p = text.begin(); p != text.end();) {
            const qsizetype length = *p == '<' ? tagLength(p, text.end(), noClose) : 0;
            if (length == 0)
                kept.append(*p++);
            p += length;
        }
        scratch = kept;
        text = scratch;
    }
    if (find(text.begin(), text.end(), '&')) {
        QByteArray decoded;
        for (const char *p = text.begin(); p != text.end();) {
            const QByteArrayView rest(p, text.end());
            const auto *const entity = std::find_if(std::begin(entities), std::end(entities),
                                                    [&](const Entity &each) { return rest.startsWith(each.name); });
            const bool found = entity != std::end(entities);
            decoded.append(found ? entity->meaning : *p);
            p += found ? entity->name.size() : 1;
        }
        scratch = decoded;
        text = scratch;
    }
    return text;
}

/// Reads normalised UTF-8 block by block.
class Parser
{
public:
    Parser(QByteArrayView text, const Check &check)
        : m_begin(text.begin())
        , m_at(text.begin())
        , m_end(text.end())
        , m_check(check)
    {}

    QList<Subtitle> parse()
    {
        for (;;) {
            // White space before a block is trimmed, and a block of white space only is no block.
            m_at = skipSpaces(m_at);
            if (m_at == m_end)
                break;
            readBlock();
            m_check();
        }
        if (m_cues.isEmpty())
            throw ConversionError(u"没有找到字幕。"_s);
        return std::move(m_cues);
    }

private:
    const char *skipSpaces(const char *p) const
    {
        while (const qsizetype length = Utf8::leadingSpace(QByteArrayView(p, m_end)))
            p += length;
        return p;
    }

    const char *lineEnd(const char *from) const
    {
        const char *const feed = find(from, m_end, '\n');
        return feed ? feed : m_end;
    }

    /// Whether the line feed at `feed` ends the block: another one follows, with nothing but blanks between.
    bool endsBlock(const char *feed) const
    {
        const char *p = feed + 1;
        while (p != m_end && isBlank(*p))
            ++p;
        return p != m_end && *p == '\n';
    }

    /// Where the line that begins at `at` stands, and what number the file gives its cue.
    QString whereabouts(const char *at, QByteArrayView numberLine) const
    {
        constexpr qsizetype most = 40; // characters
        QString number = Utf8::decode(Utf8::trimmed(numberLine));
        if (number.size() > most)
            number = number.first(most) + u'…';
        const auto line = std::count(m_begin, at, '\n') + 1;
        return number.isEmpty() ? u"位于文件第 %1 行，文件中没有序号。"_s.arg(line)
                                : u"位于文件第 %1 行，文件中的序号是 %2。"_s.arg(QString::number(line), number);
    }

    [[noreturn]] void throwBadFormat(const char *at, QByteArrayView numberLine) const
    {
        throw ConversionError::aboutCue(m_cues.size() + 1, u" 条字幕格式有误，请检查序号和时间码。",
                                        whereabouts(at, numberLine));
    }

    void readBlock()
    {
        const char *const begin = m_at;
        QByteArrayView numberLine;
        QByteArrayView timeLine(m_at, lineEnd(m_at));
        // A number cannot hold an arrow, and nearly every block begins with one.
        if (isSequenceNumber(timeLine)) {
            numberLine = timeLine;
            if (timeLine.end() == m_end || endsBlock(timeLine.end()))
                throwBadFormat(begin, numberLine);
            timeLine = QByteArrayView(timeLine.end() + 1, lineEnd(timeLine.end() + 1));
        }
        const auto times = readTimeLine(timeLine);
        if (!times)
            throwBadFormat(timeLine.begin(), numberLine);
        const char *const textBegin = timeLine.end();
        const char *textEnd = textBegin;
        while (textEnd != m_end && !endsBlock(textEnd))
            textEnd = lineEnd(textEnd + 1);
        m_at = textEnd;

        QByteArrayView text = Utf8::trimmed(QByteArrayView(textBegin, textEnd));
        const bool special = hasSpecial(text);
        if (special)
            text = plainText(text, m_scratch);
        const qint64 number = m_cues.size() + 1;
        if (times->end <= times->start || Utf8::trimmed(text).isEmpty())
            throw ConversionError::aboutCue(number, u" 条字幕为空，或结束时间早于开始时间。",
                                            whereabouts(timeLine.begin(), numberLine));
        if (special && std::any_of(text.begin(), text.end(), isControl))
            throw ConversionError(u"字幕含 XML 不支持的控制字符。"_s, whereabouts(firstControl(textBegin), numberLine));
        append({.id = number, .start = times->start, .end = times->end, .text = Utf8::decode(text)});
    }

    /// Where in the file the control character stands; decoding moves it in the text, but makes none.
    const char *firstControl(const char *text) const { return std::find_if(text, m_end, isControl); }

    void append(Subtitle &&cue)
    {
        // After some cues the file's size tells how many there will be. A list that grows by doubling would copy itself
        // and need twice the memory in the end.
        constexpr qsizetype sample = 256;
        if (m_cues.size() == sample) {
            const double bytesPerCue = double(m_at - m_begin) / sample;
            m_cues.reserve(sample + qsizetype(double(m_end - m_at) / bytesPerCue * 1.05));
        }
        m_cues.append(std::move(cue));
    }

    const char *m_begin;
    const char *m_at;
    const char *m_end;
    SparseCheck m_check;
    QByteArray m_scratch;
    QList<Subtitle> m_cues;
};

QList<Subtitle> parseUtf8(QByteArray &&text, bool hasMark, const Check &check)
{
    normalize(text, hasMark);
    return Parser(text, check).parse();
}

QByteArray toUtf8(QStringView text)
{
    QByteArray bytes(Utf8::encodedRoom(text.size()), Qt::Uninitialized);
    bytes.truncate(Utf8::encode(text, bytes.data()) - bytes.constData());
    return bytes;
}

enum class ByteOrder
{
    little,
    big
};

QList<Subtitle> parseUtf16(QByteArray &&bytes, ByteOrder order, const Check &check)
{
    if (bytes.size() % 2 != 0)
        throwUndecodableUtf16();
    // Swapped in place: a second buffer of the file's size costs more than the work on it.
    auto *const units = reinterpret_cast<quint16 *>(bytes.data());
    const qsizetype count = bytes.size() / 2;
    if (order == ByteOrder::big)
        qFromBigEndian<quint16>(units, count, units);
    else
        qFromLittleEndian<quint16>(units, count, units);
    const auto text = QStringView(units, count).sliced(1);
    if (!text.isValidUtf16())
        throwUndecodableUtf16();
    QByteArray utf8 = toUtf8(text);
    const bool hasMark = text.contains(byteOrderMark);
    bytes.clear();
    return parseUtf8(std::move(utf8), hasMark, check);
}

/// Writes `value` with at least `width` digits, as printf's "%0*lld" does: the minus sign counts as one of them.
char *putPadded(qint64 value, int width, char *out)
{
    if (value < 0) {
        *out++ = '-';
        --width;
    }
    char digits[20];
    const quint64 magnitude = value < 0 ? 0 - static_cast<quint64>(value) : static_cast<quint64>(value);
    const char *const end = std::to_chars(std::begin(digits), std::end(digits), magnitude).ptr;
    for (auto length = end - digits; length < width; ++length)
        *out++ = '0';
    return std::copy(static_cast<const char *>(digits), end, out);
}

constexpr qsizetype stampRoom = 64;

char *putStamp(qint64 milliseconds, char *out)
{
    const qint64 seconds = milliseconds / 1000;
    out = putPadded(milliseconds / 3'600'000, 2, out);
    *out++ = ':';
    out = putPadded(milliseconds / 60'000 % 60, 2, out);
    *out++ = ':';
    out = putPadded(seconds % 60, 2, out);
    *out++ = ',';
    return putPadded(milliseconds - seconds * 1000, 3, out);
}

} // namespace

QList<Subtitle> read(const QString &path, const Check &check)
{
    return Failure::naming(path, [&] { return decode(FileReader::readAll(path), check); });
}

QList<Subtitle> decode(QByteArray bytes, const Check &check)
{
    if (bytes.startsWith("\xFF\xFE"))
        return parseUtf16(std::move(bytes), ByteOrder::little, check);
    if (bytes.startsWith("\xFE\xFF"))
        return parseUtf16(std::move(bytes), ByteOrder::big, check);
    const Utf8::Survey survey = Utf8::survey(bytes);
    if (!survey.valid)
        throwUndecodableUtf8(bytes);
    return parseUtf8(std::move(bytes), survey.hasMark, check);
}

QList<Subtitle> parse(QStringView text)
{
    return parseUtf8(toUtf8(text), text.contains(byteOrderMark), {});
}

QString stamp(qint64 milliseconds)
{
    char out[stampRoom];
    return QString::fromLatin1(out, putStamp(milliseconds, out) - out);
}

QString serialize(const QList<Subtitle> &cues)
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    serialize(cues, out);
    return QString::fromUtf8(bytes);
}

void serialize(const QList<Subtitle> &cues, Utf8Writer &out)
{
    qint64 number = 0;
    for (const Subtitle &cue : cues) {
        constexpr qsizetype frame = 20 + 2 * stampRoom + 16;
        char *p = out.reserve(frame + Utf8::encodedRoom(cue.text.size()));
        if (number > 0)
            *p++ = '\n';
        p = putPadded(++number, 1, p);
        *p++ = '\n';
        p = putStamp(cue.start, p);
        for (const char c : QByteArrayView(" --> "))
            *p++ = c;
        p = putStamp(cue.end, p);
        *p++ = '\n';
        p = Utf8::encode(cue.text, p);
        *p++ = '\n';
        out.advance(p);
    }
    out.finish();
}

} // namespace SRT
