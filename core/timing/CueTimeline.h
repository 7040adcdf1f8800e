#pragma once

#include "core/Subtitle.h"

#include <optional>
#include <vector>

/// The times of a cue of a list.
struct CueTimes
{
    qsizetype cue = 0; ///< Its position in the list.
    qint64 start = 0;  ///< Milliseconds.
    qint64 end = 0;    ///< Milliseconds, above `start`.

    friend bool operator==(const CueTimes &, const CueTimes &) = default;
};

Q_DECLARE_TYPEINFO(CueTimes, Q_RELOCATABLE_TYPE);

/// The cues of a list along the timeline, in whatever order the list has them: which show when, and what lies between.
///
/// Made in one pass over a list that is in the order of its starts, in n log n otherwise. Asking takes log n.
class CueTimeline
{
public:
    CueTimeline() = default; ///< Without cues.
    explicit CueTimeline(const QList<Subtitle> &items);

    const QList<Subtitle> &items() const { return m_items; }

    qint64 end() const { return m_latestEnds.empty() ? 0 : m_latestEnds.back(); } ///< Of the last one. Milliseconds.

    /// Positions in the list of the cues that show at some time from `startMS` up to, not with, `endMS`; by start.
    QList<qsizetype> between(qint64 startMS, qint64 endMS) const;

    /// The cue that shows at `timeMS`, the one that began last where there are several.
    std::optional<qsizetype> at(qint64 timeMS) const;

    /// The first cue that starts after `timeMS`, and the last one that starts before it.
    std::optional<qsizetype> after(qint64 timeMS) const;
    std::optional<qsizetype> before(qint64 timeMS) const;

    /// A stretch of the timeline, in milliseconds, from 0 to CueEditing::latest at most.
    struct Room
    {
        qint64 start = 0;
        qint64 end = 0;

        friend bool operator==(const Room &, const Room &) = default;
    };

    /// From the last end of the cues that come before this one to the start of the next. Neighbours that overlap it
    /// leave less than it has.
    Room roomOf(qsizetype cue) const;

    /// The stretch without cues around `timeMS`; absent where one shows.
    std::optional<Room> gapAt(qint64 timeMS) const;

private:
    std::size_t firstFrom(qint64 timeMS) const;
    std::size_t placeOf(qsizetype cue) const;
    const Subtitle &inOrder(std::size_t place) const { return m_items.at(m_order[place]); }

    QList<Subtitle> m_items;
    std::vector<qsizetype> m_order;   ///< Positions by start.
    std::vector<qint64> m_latestEnds; ///< Of the cues up to each place of the order.
};
