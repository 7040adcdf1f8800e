#pragma once

#include "core/Subtitle.h"

#include <memory>
#include <vector>

/// A list of cues put away, in pieces that lists which differ little have in common.
///
/// A list that differs from its neighbour in one place takes new memory for one piece, not for all its cues.
class FrozenCues
{
public:
    /// Puts `cues` away. What is as in `neighbour`, the list that `shared` was made of, is shared with it.
    static std::shared_ptr<const FrozenCues> freeze(const QList<Subtitle> &cues, const QList<Subtitle> &neighbour,
                                                    const FrozenCues &shared);

    QList<Subtitle> thaw() const;

private:
    using Piece = std::shared_ptr<const std::vector<Subtitle>>;

    void addCopies(const QList<Subtitle> &cues, qsizetype first, qsizetype end);

    std::vector<Piece> m_pieces; ///< In order, none empty.
    qsizetype m_count = 0;
};
