#include "core/timing/SpokenNumbers.h"

#include <algorithm>
#include <optional>

namespace SpokenNumbers {

namespace {

constexpr qint64 wan = 10'000;
constexpr qint64 largestUnit = wan * wan;
constexpr qint64 unlimited = largestUnit * wan;
constexpr size_t longestCoefficient = 9; ///< Digits before a unit: with the largest one no more than fits 64 bits.

std::optional<qint64> digit(char32_t character)
{
    constexpr std::u32string_view plain = U"〇一二三四五六七八九";
    constexpr std::u32string_view formal = U"零壹贰叁肆伍陆柒捌玖";
    if (character >= U'0' && character <= U'9')
        return character - U'0';
    if (character == U'两')
        return 2;
    for (const std::u32string_view digits : {plain, formal}) {
        if (const size_t place = digits.find(character); place != std::u32string_view::npos)
            return static_cast<qint64>(place);
    }
    return std::nullopt;
}

/// 10 to 10,000 squared; 0 for what is no unit.
qint64 unit(char32_t character)
{
    switch (character) {
    case U'十':
    case U'拾':
        return 10;
    case U'百':
    case U'佰':
        return 100;
    case U'千':
    case U'仟':
        return 1'000;
    case U'万':
        return wan;
    case U'亿':
        return largestUnit;
    default:
        return 0;
    }
}

bool isAscii(char32_t character)
{
    return character < 0x80;
}

/// Reads one number that is written with units.
class UnitNumber
{
public:
    explicit UnitNumber(std::span<const char32_t> numerals)
        : m_numerals(numerals)
    {}

    /// Whether one begins at `begin`; `value` and `end` are then its own.
    bool read(size_t begin)
    {
        end = begin;
        while (readPart()) {
        }
        value = m_whole + m_section;
        return m_hasUnit;
    }

    qint64 value = 0;
    size_t end = 0;

private:
    qint64 unitAt(size_t at) const { return at < m_numerals.size() ? unit(m_numerals[at]) : 0; }
    std::optional<qint64> digitAt(size_t at) const
    {
        return at < m_numerals.size() ? digit(m_numerals[at]) : std::nullopt;
    }

    /// What stands before a unit: one Chinese digit, or a number in ASCII digits. Goes behind it.
    std::optional<qint64> coefficient(size_t &at) const
    {
        std::optional<qint64> found = digitAt(at);
        if (!found)
            return found;
        const size_t first = at++;
        if (!isAscii(m_numerals[first]))
            return found;
        for (; at < m_numerals.size() && isAscii(m_numerals[at]) && at - first < longestCoefficient; ++at)
            found = *found * 10 + *digit(m_numerals[at]);
        return found;
    }

    bool readPart()
    {
        size_t at = end;
        const bool hasZero = m_hasUnit && digitAt(at) == 0 && !isAscii(m_numerals[at]);
        at += hasZero ? 1 : 0;
        std::optional<qint64> count = coefficient(at);
        const qint64 found = unitAt(at);
        if (!count && found == 10 && m_section == 0)
            count = 1; // 十五 is fifteen
        if (found > 0 && found < wan)
            return count && found < m_lastUnit && addUnit(*count, found, at + 1);
        if (found >= wan)
            return (count || m_section > 0) && found < m_lastLarge && addLarge(count.value_or(0), found, at + 1);
        if (count && m_hasUnit)
            addRest(*count, hasZero, at);
        return false;
    }

    bool addUnit(qint64 count, qint64 of, size_t next)
    {
        m_section += count * of;
        m_lastUnit = of;
        m_hasUnit = true;
        end = next;
        return true;
    }

    bool addLarge(qint64 count, qint64 of, size_t next)
    {
        m_whole += (m_section + count) * of;
        m_section = 0;
        m_lastUnit = wan;
        m_lastLarge = of;
        m_hasUnit = true;
        end = next;
        return true;
    }

    /// The last digit of 二十三 and 一百零五, and of 一百二 and 三万二, which leave a unit unsaid.
    void addRest(qint64 count, bool hasZero, size_t next)
    {
        const qint64 last = m_lastUnit < wan ? m_lastUnit : m_lastLarge;
        m_section += hasZero || last == 10 || count > 9 ? count : count * (last / 10);
        end = next;
    }

    std::span<const char32_t> m_numerals;
    qint64 m_whole = 0;
    qint64 m_section = 0; ///< What stands before the next 万 or 亿.
    qint64 m_lastUnit = wan;
    qint64 m_lastLarge = unlimited;
    bool m_hasUnit = false;
};

void append(std::vector<Digit> &digits, qint64 value, size_t begin, size_t end)
{
    const QString written = QString::number(value);
    const size_t length = end - begin;
    const auto count = static_cast<size_t>(written.size());
    for (size_t i = 0; i < count; ++i) {
        const size_t first = begin + i * length / count;
        digits.push_back({.value = written[static_cast<qsizetype>(i)].unicode(),
                          .begin = first,
                          .end = std::max(begin + (i + 1) * length / count, first + 1)});
    }
}

} // namespace

bool isNumeral(char32_t character)
{
    return digit(character) || unit(character) > 0;
}

std::vector<Digit> digits(std::span<const char32_t> numerals)
{
    std::vector<Digit> result;
    for (size_t at = 0; at < numerals.size();) {
        UnitNumber number(numerals);
        if (number.read(at)) {
            append(result, number.value, at, number.end);
            at = number.end;
        } else {
            // A unit without a number, 万 of 万一, counts as what it stands for, in either text.
            append(result, digit(numerals[at]).value_or(unit(numerals[at])), at, at + 1);
            ++at;
        }
    }
    return result;
}

} // namespace SpokenNumbers
