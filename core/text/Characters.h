#pragma once

#include <QString>

#include <iterator>
#include <memory>

struct UBreakIterator;

/// What the text tools mean by a character, a letter, a mark or a blank: Unicode's own sets, in one place.
///
/// A "scalar" is a Unicode code point; a lone surrogate counts as one that belongs to no set. A "character" is what the
/// reader sees as one, a grapheme cluster: 👨‍👩‍👧, é in two scalars, a Hangul syllable in jamo and CR LF
/// are one each.
namespace Characters {

bool isBlank(char32_t scalar); ///< White space within a line: a tab, or general category Zs.

/// U+000A to U+000D, U+0085, U+2028, U+2029.
constexpr bool isNewline(char32_t scalar)
{
    return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 || scalar == 0x2029;
}

/// An ideograph of the block that most Chinese text is written in. Asked first, it spares the look-up of a category.
constexpr bool isCommonIdeograph(char32_t scalar)
{
    return scalar >= 0x4E00 && scalar <= 0x9FA5;
}

/// White_Space: blanks, U+00A0, U+3000, and all that ends a line.
inline bool isSpace(char32_t scalar)
{
    return !isCommonIdeograph(scalar) && QChar::isSpace(scalar);
}

bool isLetter(char32_t scalar); ///< General categories L and M. Ideographs are letters; 〇, ① and ㋐ are none.
bool isLetterOrDigit(char32_t scalar); ///< General categories L and N.
bool isAlphanumeric(char32_t scalar);  ///< General categories L, M and N.

/// General category P: 、《》…— too, but neither ~ nor $.
inline bool isPunctuation(char32_t scalar)
{
    return !isCommonIdeograph(scalar) && QChar::isPunct(scalar);
}

QChar::Script script(char32_t scalar); ///< The Script property. ー and marks belong to no single script.

QStringView trimmed(QStringView text);       ///< `text` without white space at both ends.
QStringView trimmedBlanks(QStringView text); ///< `text` without blanks at both ends.

/// Whether `text` holds a scalar below U+0020 other than tab and line feed, which no XML document can carry.
bool holdsControl(QStringView text);

/// Whether XML 1.0, and so a title, can carry every character of `text`: no control characters but tab, line feed and
/// carriage return, no U+FFFE, U+FFFF, no lone surrogate.
bool isWritable(QStringView text);

/// The number of characters.
qsizetype count(QStringView text);

/// Whether there are more than `limit` characters.
bool isLonger(QStringView text, qsizetype limit);

/// Whether a character begins at the UTF-16 code unit `position` of `text`, or the text ends there.
bool isBoundary(QStringView text, qsizetype position);

/// Walks over the scalars of a text: `for (const char32_t scalar : Characters::Scalars(text))`.
class Scalars
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = char32_t;
        using difference_type = std::ptrdiff_t;
        using pointer = const char32_t *;
        using reference = char32_t;

        Iterator(const char16_t *at, const char16_t *end)
            : m_at(at)
            , m_end(end)
        {}

        char32_t operator*() const
        {
            return isPair() ? QChar::surrogateToUcs4(m_at[0], m_at[1]) : static_cast<char32_t>(*m_at);
        }
        Iterator &operator++()
        {
            m_at += isPair() ? 2 : 1;
            return *this;
        }
        bool operator==(const Iterator &other) const { return m_at == other.m_at; }

    private:
        bool isPair() const
        {
            return QChar::isHighSurrogate(*m_at) && m_at + 1 != m_end && QChar::isLowSurrogate(m_at[1]);
        }

        const char16_t *m_at;
        const char16_t *m_end;
    };

    explicit Scalars(QStringView text)
        : m_begin(text.utf16())
        , m_end(text.utf16() + text.size())
    {}

    Iterator begin() const { return {m_begin, m_end}; }
    Iterator end() const { return {m_end, m_end}; }

private:
    const char16_t *m_begin;
    const char16_t *m_end;
};

struct RulesCloser
{
    void operator()(UBreakIterator *rules) const;
};

/// Walks over the characters of a text, which must outlive it:
/// `for (Characters::Cursor at(text); at.next();) use(at.character());`
/// @throws PlatformError when the segmentation rules cannot be loaded
class Cursor
{
public:
    explicit Cursor(QStringView text);
    ~Cursor();
    Q_DISABLE_COPY_MOVE(Cursor)

    bool next(); ///< Goes to the next character. False after the last one.

    qsizetype begin() const { return m_begin; } ///< In UTF-16 code units.
    qsizetype end() const { return m_end; }
    QStringView character() const { return m_text.sliced(m_begin, m_end - m_begin); }

private:
    void openWindow();

    QStringView m_text;
    qsizetype m_begin = 0;
    qsizetype m_end = 0;
    qsizetype m_windowBegin = 0; ///< The stretch that needs Unicode's segmentation rules.
    qsizetype m_windowEnd = 0;
    std::unique_ptr<UBreakIterator, RulesCloser> m_rules; ///< Null before the first such stretch.
};

} // namespace Characters
