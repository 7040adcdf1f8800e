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
