#pragma once

#include "core/Subtitle.h"

#include <memory>
#include <vector>

/// Some cues of a list, and those that come in their place.
struct CueEdit
{
    qsizetype at = 0;
    qsizetype cut = 0;
    QList<Subtitle> put = {};
};

/// A list of cues put away, in pieces that lists which differ little have in common.
///
/// A list that differs from its neighbour in one place takes new memory for one piece, not for all its cues.
class FrozenCues
{
public:
    /// Puts `cues` away. What is as in `neighbour`, the list that `shared` was made of, is shared with it.
    static std::shared_ptr<const FrozenCues> freeze(const QList<Subtitle> &cues, const QList<Subtitle> &neighbour,
                                                    const FrozenCues &shared);

    /// The list with `edits` made, whose places are those of this one: within it, ascending, and not one in another.
    std::shared_ptr<const FrozenCues> edited(const std::vector<CueEdit> &edits) const;

    qsizetype count() const { return m_count; }

    QList<Subtitle> thaw() const;

private:
    using Piece = std::shared_ptr<const std::vector<Subtitle>>;
    class Builder;

    void addCopies(const QList<Subtitle> &cues, qsizetype first, qsizetype end);

    std::vector<Piece> m_pieces; ///< In order, none empty.
    qsizetype m_count = 0;
};
