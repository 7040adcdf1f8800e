#include "app/model/FrozenCues.h"

#include <algorithm>

namespace {

/// Cues in a piece. A small piece is cheap to replace, a large one keeps the list of pieces short; at 10,000 cues both
/// take a few kilobytes.
constexpr qsizetype pieceSize = 64;

} // namespace

std::shared_ptr<const FrozenCues> FrozenCues::freeze(const QList<Subtitle> &cues, const QList<Subtitle> &neighbour,
                                                     const FrozenCues &shared)
{
    const auto front = std::mismatch(cues.begin(), cues.end(), neighbour.begin(), neighbour.end()).first;
    const qsizetype same = front - cues.begin();
    const auto back = std::mismatch(cues.rbegin(), std::make_reverse_iterator(front), neighbour.rbegin(),
                                    std::make_reverse_iterator(neighbour.begin() + same));
    const qsizetype sameEnd = back.first - cues.rbegin();

    auto frozen = std::make_shared<FrozenCues>();
    qsizetype taken = 0; // cues of `shared` that stand in front of the piece looked at
    auto piece = shared.m_pieces.begin();
    for (; piece != shared.m_pieces.end() && taken + qsizetype((*piece)->size()) <= same; ++piece) {
        frozen->m_pieces.push_back(*piece);
        taken += qsizetype((*piece)->size());
    }
    // Pieces that have become small join their neighbours; else inserting cue by cue would leave one piece a cue.
    const auto isSmall = [](const Piece &each) { return qsizetype(each->size()) < pieceSize / 2; };
    qsizetype copiedFrom = taken;
    while (!frozen->m_pieces.empty() && isSmall(frozen->m_pieces.back())) {
        copiedFrom -= qsizetype(frozen->m_pieces.back()->size());
        frozen->m_pieces.pop_back();
    }
    while (piece != shared.m_pieces.end() && (taken < shared.m_count - sameEnd || isSmall(*piece))) {
        taken += qsizetype((*piece)->size());
        ++piece;
    }
    frozen->addCopies(cues, copiedFrom, cues.size() - (shared.m_count - taken));
    frozen->m_pieces.insert(frozen->m_pieces.end(), piece, shared.m_pieces.end());
    frozen->m_count = cues.size();
    return frozen;
}

/// Puts a list together of pieces that are taken over and cues that stand loose between them.
class FrozenCues::Builder
{
public:
    void add(const Piece &piece)
    {
        if (m_loose.empty() || qsizetype(m_loose.size()) >= pieceSize / 2) {
            flush();
            m_cues->m_pieces.push_back(piece);
        } else {
            add(piece->begin(), piece->end()); // or few loose ones would become a small piece
        }
    }

    template <class Iterator>
    void add(Iterator begin, Iterator end)
    {
        std::vector<Piece> &pieces = m_cues->m_pieces;
        if (m_loose.empty() && begin != end && !pieces.empty() && qsizetype(pieces.back()->size()) < pieceSize / 2) {
            m_loose = *pieces.back();
            pieces.pop_back();
        }
        m_loose.insert(m_loose.end(), begin, end);
    }

    std::shared_ptr<const FrozenCues> finish()
    {
        flush();
        for (const Piece &piece : m_cues->m_pieces)
            m_cues->m_count += qsizetype(piece->size());
        return m_cues;
    }

private:
    /// In pieces of the same size: one that is left over would be small.
    void flush()
    {
        const auto count = qsizetype(m_loose.size());
        const qsizetype pieces = (count + pieceSize - 1) / pieceSize;
        for (qsizetype i = 0; i < pieces; ++i) {
            m_cues->m_pieces.push_back(std::make_shared<const std::vector<Subtitle>>(
                m_loose.begin() + i * count / pieces, m_loose.begin() + (i + 1) * count / pieces));
        }
        m_loose.clear();
    }

    std::shared_ptr<FrozenCues> m_cues = std::make_shared<FrozenCues>();
    std::vector<Subtitle> m_loose;
};

std::shared_ptr<const FrozenCues> FrozenCues::edited(const std::vector<CueEdit> &edits) const
{
    Builder builder;
    auto piece = m_pieces.begin();
    qsizetype begin = 0; // of the piece
    qsizetype at = 0;    // in the list
    const auto goTo = [&](qsizetype end, bool isKept) {
        while (at < end) {
            const auto size = qsizetype((*piece)->size());
            const qsizetype stop = std::min(end, begin + size);
            if (isKept && stop - at == size)
                builder.add(*piece);
            else if (isKept)
                builder.add((*piece)->begin() + (at - begin), (*piece)->begin() + (stop - begin));
            at = stop;
            if (at == begin + size) {
                begin = at;
                ++piece;
            }
        }
    };
    for (const CueEdit &edit : edits) {
        goTo(edit.at, true);
        builder.add(edit.put.begin(), edit.put.end());
        goTo(edit.at + edit.cut, false);
    }
    goTo(m_count, true);
    return builder.finish();
}

QList<Subtitle> FrozenCues::thaw() const
{
    QList<Subtitle> cues;
    cues.reserve(m_count);
    for (const Piece &piece : m_pieces) {
        for (const Subtitle &cue : *piece)
            cues.append(cue);
    }
    return cues;
}

void FrozenCues::addCopies(const QList<Subtitle> &cues, qsizetype first, qsizetype end)
{
    for (; first < end; first += pieceSize) {
        const auto begin = cues.begin() + first;
        m_pieces.push_back(
            std::make_shared<const std::vector<Subtitle>>(begin, begin + std::min(pieceSize, end - first)));
    }
}
