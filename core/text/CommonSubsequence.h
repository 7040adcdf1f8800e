#pragma once

#include <QtGlobal>

#include <span>
#include <vector>

/// Finds a longest common subsequence of two sequences of keys.
///
/// Takes time and memory of a bit for each cell of the usual table: 64 cells are worked out at once. One object serves
/// many calls and keeps its buffers warm.
class CommonSubsequence
{
public:
    using Key = quint32;

    struct Pair
    {
        qint32 first;
        qint32 second;
    };

    /// Keys are below `keyCount`.
    explicit CommonSubsequence(Key keyCount);

    /// Positions of equal keys, ascending in both sequences. Of equally long subsequences it is one that holds the
    /// common beginning and the common end, and stays in step with them where it can. Valid until the next call.
    const std::vector<Pair> &find(std::span<const Key> first, std::span<const Key> second);

private:
    void findBetween(std::span<const Key> rows, std::span<const Key> columns);
    void markColumns(std::span<const Key> columns);
    void fillRows(std::span<const Key> rows);
    void straighten(std::span<const Key> first, std::span<const Key> second);

    std::vector<Pair> m_pairs;
    std::vector<quint32> m_slotOfKey; ///< Where a key's columns are in m_columnsOfSlot; 0 for a key without columns.
    std::vector<quint64> m_columnsOfSlot; ///< A bit for each column that holds the key, `m_words` words a slot.
    std::vector<quint64> m_rows; ///< `m_words` words a row: the bit is clear where the column adds one to the length.
    size_t m_words = 0;
};
