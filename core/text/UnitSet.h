#pragma once

#include <QStringView>

#include <array>

/// A set of UTF-16 code units, asked in one step however many it holds: for questions that are put of every character
/// of a text. Eight KiB; make it a constant of the program.
class UnitSet
{
public:
    constexpr explicit UnitSet(QStringView members)
    {
        for (qsizetype i = 0; i < members.size(); ++i)
            insert(members.utf16()[i], members.utf16()[i]);
    }

    struct Range
    {
        char16_t first;
        char16_t last; ///< Included.
    };

    template <size_t count>
    constexpr explicit UnitSet(const Range (&ranges)[count])
    {
        for (const Range range : ranges)
            insert(range.first, range.last);
    }

    constexpr bool contains(QChar unit) const
    {
        return (m_bits[unit.unicode() / 64U] >> (unit.unicode() % 64U) & 1U) != 0;
    }

private:
    constexpr void insert(size_t first, size_t last)
    {
        for (size_t unit = first; unit <= last; ++unit)
            m_bits[unit / 64] |= quint64(1) << (unit % 64);
    }

    std::array<quint64, 65'536 / 64> m_bits = {};
};
