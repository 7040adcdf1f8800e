#include "core/timing/CueTimeline.h"

#include "core/CueEditing.h"

#include <algorithm>
#include <numeric>

CueTimeline::CueTimeline(const QList<Subtitle> &items)
    : m_items(items)
    , m_order(std::size_t(items.size()))
{
    std::iota(m_order.begin(), m_order.end(), 0);
    const auto start = [this](qsizetype cue) { return m_items.at(cue).start; };
    if (!std::ranges::is_sorted(m_order, {}, start))
        std::ranges::stable_sort(m_order, {}, start);
    m_latestEnds.reserve(m_order.size());
    for (const qsizetype cue : m_order)
        m_latestEnds.push_back(std::max(m_latestEnds.empty() ? 0 : m_latestEnds.back(), m_items.at(cue).end));
}

/// The first place of the order whose cue starts at `timeMS` or later.
std::size_t CueTimeline::firstFrom(qint64 timeMS) const
{
    const auto start = [this](qsizetype cue) { return m_items.at(cue).start; };
    return std::size_t(std::ranges::lower_bound(m_order, timeMS, {}, start) - m_order.begin());
}

std::size_t CueTimeline::placeOf(qsizetype cue) const
{
    std::size_t place = firstFrom(m_items.at(cue).start);
    while (m_order[place] != cue)
        ++place;
    return place;
}

QList<qsizetype> CueTimeline::between(qint64 startMS, qint64 endMS) const
{
    QList<qsizetype> cues;
    const std::size_t behind = firstFrom(endMS);
    // Up to here everything is over.
    const auto first = std::ranges::upper_bound(m_latestEnds, startMS) - m_latestEnds.begin();
    for (auto place = std::size_t(first); place < behind; ++place) {
        if (inOrder(place).end > startMS)
            cues += m_order[place];
    }
    return cues;
}

std::optional<qsizetype> CueTimeline::at(qint64 timeMS) const
{
    const QList<qsizetype> showing = between(timeMS, timeMS + 1);
    return showing.isEmpty() ? std::nullopt : std::optional(showing.last());
}

std::optional<qsizetype> CueTimeline::after(qint64 timeMS) const
{
    const std::size_t place = firstFrom(timeMS + 1);
    return place < m_order.size() ? std::optional(m_order[place]) : std::nullopt;
}

std::optional<qsizetype> CueTimeline::before(qint64 timeMS) const
{
    const std::size_t place = firstFrom(timeMS);
    return place > 0 ? std::optional(m_order[place - 1]) : std::nullopt;
}

CueTimeline::Room CueTimeline::roomOf(qsizetype cue) const
{
    const std::size_t place = placeOf(cue);
    return {.start = place > 0 ? m_latestEnds[place - 1] : 0,
            .end = place + 1 < m_order.size() ? inOrder(place + 1).start : CueEditing::latest};
}

std::optional<CueTimeline::Room> CueTimeline::gapAt(qint64 timeMS) const
{
    const std::size_t next = firstFrom(timeMS + 1);
    const Room gap{.start = next > 0 ? m_latestEnds[next - 1] : 0,
                   .end = next < m_order.size() ? inOrder(next).start : CueEditing::latest};
    return gap.start <= timeMS && timeMS < gap.end ? std::optional(gap) : std::nullopt;
}
