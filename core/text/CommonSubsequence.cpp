#include "core/text/CommonSubsequence.h"

#include <algorithm>

namespace {

constexpr size_t bitsPerWord = 64;

} // namespace

CommonSubsequence::CommonSubsequence(Key keyCount)
    : m_slotOfKey(keyCount, 0)
{}

const std::vector<CommonSubsequence::Pair> &CommonSubsequence::find(std::span<const Key> first,
                                                                    std::span<const Key> second)
{
    m_pairs.clear();
    const auto prefix = static_cast<size_t>(
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first - first.begin());
    const auto firstMiddle = first.subspan(prefix);
    const auto secondMiddle = second.subspan(prefix);
    const auto suffix = static_cast<size_t>(
        std::mismatch(firstMiddle.rbegin(), firstMiddle.rend(), secondMiddle.rbegin(), secondMiddle.rend()).first -
        firstMiddle.rbegin());

    for (size_t i = 0; i < prefix; ++i)
        m_pairs.push_back({static_cast<qint32>(i), static_cast<qint32>(i)});
    // The shorter sequence goes across: the masks of its keys take room by the square of its length.
    const auto firstRest = firstMiddle.first(firstMiddle.size() - suffix);
    const auto secondRest = secondMiddle.first(secondMiddle.size() - suffix);
    const bool turned = firstRest.size() < secondRest.size();
    const auto between = static_cast<std::ptrdiff_t>(m_pairs.size());
    findBetween(turned ? secondRest : firstRest, turned ? firstRest : secondRest);
    std::reverse(m_pairs.begin() + between, m_pairs.end());
    std::for_each(m_pairs.begin() + between, m_pairs.end(), [&](Pair &pair) {
        if (turned)
            std::swap(pair.first, pair.second);
        pair.first += static_cast<qint32>(prefix);
        pair.second += static_cast<qint32>(prefix);
    });
    for (size_t left = suffix; left > 0; --left)
        m_pairs.push_back({static_cast<qint32>(first.size() - left), static_cast<qint32>(second.size() - left)});
    straighten(first, second);
    return m_pairs;
}

/// Brings pairs into step with the pair before where an equal key stands there too. Coming from the end, the search
/// pairs the last of several equal keys, which may stand in a passage that only one sequence has.
void CommonSubsequence::straighten(std::span<const Key> first, std::span<const Key> second)
{
    // What is in step with the end stays there.
    const auto endStep = static_cast<qint32>(second.size()) - static_cast<qint32>(first.size());
    auto loose = m_pairs.end();
    while (loose != m_pairs.begin() && (loose - 1)->second - (loose - 1)->first == endStep)
        --loose;
    qint32 step = 0;
    for (auto pair = m_pairs.begin(); pair != loose; ++pair) {
        const qint32 inStep = pair->first + step;
        if (inStep < pair->second && second[static_cast<size_t>(inStep)] == first[static_cast<size_t>(pair->first)])
            pair->second = inStep;
        step = pair->second - pair->first;
    }
}

/// Appends the pairs from back to front.
void CommonSubsequence::findBetween(std::span<const Key> rows, std::span<const Key> columns)
{
    if (columns.empty())
        return;
    markColumns(columns);
    fillRows(rows);
    for (const Key key : columns)
        m_slotOfKey[key] = 0;

    size_t row = rows.size();
    size_t column = columns.size();
    while (row > 0 && column > 0) {
        const size_t bit = column - 1;
        const quint64 word = m_rows[(row - 1) * m_words + bit / bitsPerWord];
        if (rows[row - 1] == columns[bit])
            m_pairs.push_back({static_cast<qint32>(--row), static_cast<qint32>(--column)});
        else if ((word >> (bit % bitsPerWord) & 1) != 0)
            --column; // This column adds nothing here.
        else
            --row; // It does, but not by this row, whose key is another.
    }
}

void CommonSubsequence::markColumns(std::span<const Key> columns)
{
    m_words = (columns.size() + bitsPerWord - 1) / bitsPerWord;
    m_columnsOfSlot.assign(m_words, 0);
    quint32 slots = 1;
    for (size_t column = 0; column < columns.size(); ++column) {
        quint32 &slot = m_slotOfKey[columns[column]];
        if (slot == 0) {
            slot = slots++;
            m_columnsOfSlot.resize(slots * m_words, 0);
        }
        m_columnsOfSlot[slot * m_words + column / bitsPerWord] |= quint64(1) << (column % bitsPerWord);
    }
}

/// Works out one row of the table from the one above, 64 columns at a time. Within a run of columns up to the next one
/// that adds to the length, the addition moves that place to the first column with the row's key: its carry runs
/// through the set bits between.
void CommonSubsequence::fillRows(std::span<const Key> rows)
{
    m_rows.resize(rows.size() * m_words);
    const std::vector<quint64> top(m_words, ~quint64(0));
    const quint64 *above = top.data();
    quint64 *row = m_rows.data();
    for (const Key key : rows) {
        const quint64 *const equal = m_columnsOfSlot.data() + m_slotOfKey[key] * m_words;
        quint64 carry = 0;
        for (size_t i = 0; i < m_words; ++i) {
            const quint64 moved = above[i] & equal[i];
            const quint64 sum = above[i] + moved;
            const quint64 sumWithCarry = sum + carry;
            carry = (sum < moved || sumWithCarry < sum) ? 1 : 0;
            row[i] = sumWithCarry | (above[i] & ~equal[i]);
        }
        above = row;
        row += m_words;
    }
}
