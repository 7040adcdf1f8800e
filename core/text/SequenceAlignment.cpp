#include "core/text/SequenceAlignment.h"

#include <algorithm>
#include <bit>

namespace SequenceAlignment {

namespace {

constexpr size_t shingleLength = 8;
constexpr qint32 none = -1;
constexpr qint32 repeated = -2;

using Sequence = std::span<const Key>;

/// All shingles of the source, and where in the script they are found. Hashes only lead to them: keys are compared.
class Shingles
{
public:
    Shingles(Sequence source, size_t length)
        : m_source(source)
        , m_length(length)
        , m_entries(std::bit_ceil(std::max<size_t>(source.size() * 2, 2)))
    {
        forEachShingle(source, [this](size_t start, quint64 hash, Sequence shingle) {
            Entry &entry = find(hash, shingle);
            if (entry.source == none)
                entry.source = static_cast<qint32>(start);
            else
                entry.isRepeated = true;
        });
    }

    void findIn(Sequence script)
    {
        forEachShingle(script, [this](size_t start, quint64 hash, Sequence shingle) {
            Entry &entry = find(hash, shingle);
            if (entry.source != none)
                entry.script = entry.script == none ? static_cast<qint32>(start) : repeated;
        });
    }

    /// Of the shingles that stand once in the source and once in the script, ascending in the source.
    std::vector<Anchor> anchors() const
    {
        std::vector<qint32> scriptOfSource(m_source.size(), none);
        for (const Entry &entry : m_entries) {
            if (entry.source != none && !entry.isRepeated && entry.script >= 0)
                scriptOfSource[static_cast<size_t>(entry.source)] = entry.script;
        }
        std::vector<Anchor> anchors;
        for (size_t i = 0; i < scriptOfSource.size(); ++i) {
            if (scriptOfSource[i] != none)
                anchors.push_back({static_cast<qint32>(i), scriptOfSource[i]});
        }
        return anchors;
    }

private:
    struct Entry
    {
        qint32 source = none; ///< Its first place in the source.
        qint32 script = none; ///< Its only place in the script, or `repeated`.
        bool isRepeated = false;
    };

    template <class Take>
    void forEachShingle(Sequence sequence, Take &&take) const
    {
        constexpr quint64 base = 0x9E37'79B9'7F4A'7C15; // odd, its bits well mixed
        quint64 highest = 1;
        for (size_t i = 0; i < m_length; ++i)
            highest *= base;
        quint64 hash = 0;
        for (size_t end = 0; end < sequence.size(); ++end) {
            hash = hash * base + sequence[end];
            if (end >= m_length)
                hash -= highest * sequence[end - m_length];
            if (end + 1 >= m_length) {
                const size_t start = end + 1 - m_length;
                take(start, hash, sequence.subspan(start, m_length));
            }
        }
    }

    /// The entry of `shingle`, or the empty one where it would go.
    Entry &find(quint64 hash, Sequence shingle)
    {
        const size_t mask = m_entries.size() - 1;
        hash ^= hash >> 32;
        hash *= 0xD6E8'FEB8'6659'FD93;
        for (size_t at = static_cast<size_t>(hash >> 32) & mask;; at = (at + 1) & mask) {
            Entry &entry = m_entries[at];
            if (entry.source == none ||
                std::ranges::equal(m_source.subspan(static_cast<size_t>(entry.source), m_length), shingle))
                return entry;
        }
    }

    Sequence m_source;
    size_t m_length;
    std::vector<Entry> m_entries; ///< Open addressing, at most half full.
};

/// The longest choice of anchors that ascends in the script too: each goes on the pile whose top is the smallest that
/// is not below it, and remembers the top of the pile before.
std::vector<Anchor> longestAscending(const std::vector<Anchor> &anchors)
{
    std::vector<size_t> tops;
    std::vector<size_t> previous(anchors.size());
    for (size_t i = 0; i < anchors.size(); ++i) {
        const auto pile = std::lower_bound(tops.begin(), tops.end(), anchors[i].script,
                                           [&](size_t top, qint32 script) { return anchors[top].script < script; });
        previous[i] = pile == tops.begin() ? i : *(pile - 1);
        if (pile == tops.end())
            tops.push_back(i);
        else
            *pile = i;
    }
    std::vector<Anchor> chain(tops.size());
    size_t at = tops.empty() ? 0 : tops.back();
    std::for_each(chain.rbegin(), chain.rend(), [&](Anchor &link) {
        link = anchors[at];
        at = previous[at];
    });
    return chain;
}

/// Leaves out anchors that overlap the one before.
std::vector<Anchor> apart(const std::vector<Anchor> &chain, qint32 length)
{
    std::vector<Anchor> kept;
    for (const Anchor &anchor : chain) {
        if (kept.empty() ||
            (anchor.source >= kept.back().source + length && anchor.script >= kept.back().script + length))
            kept.push_back(anchor);
    }
    return kept;
}

} // namespace

std::vector<Anchor> anchors(Sequence source, Sequence script, size_t length, const std::function<void()> &check)
{
    Shingles shingles(source, length);
    check();
    shingles.findIn(script);
    check();
    return apart(longestAscending(shingles.anchors()), static_cast<qint32>(length));
}

std::vector<qint32> match(Sequence source, Sequence script, Key keyCount, const std::function<void()> &check)
{
    std::vector<Anchor> anchors = SequenceAlignment::anchors(source, script, shingleLength, check);
    anchors.push_back({static_cast<qint32>(source.size()), static_cast<qint32>(script.size())});

    std::vector<qint32> partners(source.size(), none);
    CommonSubsequence subsequence(keyCount);
    size_t sourceAt = 0;
    size_t scriptAt = 0;
    for (const Anchor &anchor : anchors) {
        check();
        const auto sourceEnd = static_cast<size_t>(anchor.source);
        const auto scriptEnd = static_cast<size_t>(anchor.script);
        const Sequence sourceGap = source.subspan(sourceAt, sourceEnd - sourceAt);
        const Sequence scriptGap = script.subspan(scriptAt, scriptEnd - scriptAt);
        if ((sourceGap.size() + 1) * (scriptGap.size() + 1) <= mostCells) {
            for (const auto [inSource, inScript] : subsequence.find(sourceGap, scriptGap))
                partners[sourceAt + static_cast<size_t>(inSource)] = static_cast<qint32>(scriptAt) + inScript;
        }
        sourceAt = std::min(sourceEnd + shingleLength, source.size());
        scriptAt = std::min(scriptEnd + shingleLength, script.size());
        for (size_t i = 0; sourceEnd + i < sourceAt; ++i)
            partners[sourceEnd + i] = anchor.script + static_cast<qint32>(i);
    }
    return partners;
}

} // namespace SequenceAlignment
