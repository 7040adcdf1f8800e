#include "core/text/Characters.h"

#include "core/PlatformError.h"
#include "core/text/UnitSet.h"

#include <unicode/ubrk.h>

#include <algorithm>
#include <utility>

namespace Characters {

namespace {

// Between two scalars that neither extend, join nor pair up there is always a boundary. Nearly all text is made of
// them: only the rest goes through Unicode's segmentation rules, which cost a hundred times as much. These are the
// ranges of such scalars that matter; one that is missing costs time, not correctness.
constexpr UnitSet plain({
    {u'\t', u'\n'},
    {0x0020, 0x02FF},
    {0x0370, 0x0482},
    {0x048A, 0x0590},
    {0x1E00, 0x1FFF},
    {0x2010, 0x2027},
    {0x2030, 0x205F},
    {0x2070, 0x20CF},
    {0x2100, 0x2BFF},
    {0x2E00, 0x3029},
    {0x3030, 0x3098},
    {0x309B, 0xA48F},
    {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},
    {0xFF01, 0xFF9D},
});

constexpr quint32 bit(QChar::Category category)
{
    return 1U << category;
}

constexpr quint32 letters = bit(QChar::Letter_Uppercase) | bit(QChar::Letter_Lowercase) | bit(QChar::Letter_Titlecase) |
                            bit(QChar::Letter_Modifier) | bit(QChar::Letter_Other);
constexpr quint32 marks = bit(QChar::Mark_NonSpacing) | bit(QChar::Mark_SpacingCombining) | bit(QChar::Mark_Enclosing);
constexpr quint32 numbers = bit(QChar::Number_DecimalDigit) | bit(QChar::Number_Letter) | bit(QChar::Number_Other);

bool isIn(quint32 categories, char32_t scalar)
{
    return (bit(QChar::category(scalar)) & categories) != 0;
}

void check(UErrorCode status)
{
    if (U_FAILURE(status))
        throw PlatformError(QString::fromLatin1(u_errorName(status)));
}

UBreakIterator *openRules()
{
    UErrorCode status = U_ZERO_ERROR;
    // Without a language: what a reader sees as one character does not depend on any here.
    UBreakIterator *const rules = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    check(status);
    return rules;
}

/// The one that a walk on this thread used last: opening another takes as long as walking over a hundred characters.
thread_local std::unique_ptr<UBreakIterator, RulesCloser> spareRules;

} // namespace

bool isBlank(char32_t scalar)
{
    return scalar == U'\t' || QChar::category(scalar) == QChar::Separator_Space;
}

bool isLetter(char32_t scalar)
{
    return isIn(letters | marks, scalar);
}

bool isLetterOrDigit(char32_t scalar)
{
    return isIn(letters | numbers, scalar);
}

bool isAlphanumeric(char32_t scalar)
{
    return isIn(letters | marks | numbers, scalar);
}

QChar::Script script(char32_t scalar)
{
    return QChar::script(scalar);
}

QStringView trimmed(QStringView text)
{
    const bool isTrimmed =
        text.isEmpty() || (isCommonIdeograph(text.front().unicode()) && isCommonIdeograph(text.back().unicode()));
    return isTrimmed ? text : text.trimmed();
}

QStringView trimmedBlanks(QStringView text)
{
    // All blanks are single code units.
    while (!text.isEmpty() && isBlank(text.front().unicode()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back().unicode()))
        text.chop(1);
    return text;
}

bool holdsControl(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c < u' ' && c != u'\t' && c != u'\n'; });
}

bool isWritable(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            return false;
        if (c < 0xD800)
            continue;
        if (c == 0xFFFE || c == 0xFFFF)
            return false;
        if (!QChar::isSurrogate(c))
            continue;
        if (!QChar::isHighSurrogate(c) || i + 1 == text.size() || !text[i + 1].isLowSurrogate())
            return false;
        ++i;
    }
    return true;
}

qsizetype count(QStringView text)
{
    if (std::all_of(text.begin(), text.end(), [](QChar unit) { return plain.contains(unit); }))
        return text.size();
    qsizetype characters = 0;
    for (Cursor at(text); at.next();)
        ++characters;
    return characters;
}

bool isLonger(QStringView text, qsizetype limit)
{
    if (text.size() <= limit)
        return false;
    // A text that is far too long is not read to its end.
    Cursor at(text);
    for (qsizetype characters = 0; characters <= limit; ++characters) {
        if (!at.next())
            return false;
    }
    return true;
}

bool isBoundary(QStringView text, qsizetype position)
{
    Cursor at(text);
    while (at.end() < position && at.next()) {
    }
    return at.end() == position;
}

Cursor::Cursor(QStringView text)
    : m_text(text)
{}

Cursor::~Cursor()
{
    if (m_rules && !spareRules)
        spareRules.reset(m_rules.release());
}

bool Cursor::next()
{
    m_begin = m_end;
    if (m_begin == m_text.size())
        return false;
    if (m_begin == m_windowEnd) {
        const bool lastUnit = m_begin + 1 == m_text.size();
        if (plain.contains(m_text[m_begin]) && (lastUnit || plain.contains(m_text[m_begin + 1]))) {
            m_windowEnd = m_end = m_begin + 1;
            return true;
        }
        openWindow();
    }
    m_end = m_windowBegin + ubrk_next(m_rules.get());
    return true;
}

void Cursor::openWindow()
{
    m_windowBegin = m_begin;
    m_windowEnd = m_begin + 1;
    while (m_windowEnd != m_text.size() &&
           !(plain.contains(m_text[m_windowEnd - 1]) && plain.contains(m_text[m_windowEnd])))
        ++m_windowEnd;
    if (!m_rules)
        m_rules.reset(spareRules ? spareRules.release() : openRules());
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(m_rules.get(), m_text.utf16() + m_windowBegin, int32_t(m_windowEnd - m_windowBegin), &status);
    check(status);
}

void RulesCloser::operator()(UBreakIterator *rules) const
{
    ubrk_close(rules);
}

} // namespace Characters
