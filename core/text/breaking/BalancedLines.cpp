#include "core/text/breaking/BalancedLines.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace BalancedLines {

namespace {

constexpr double raggedness = 40; ///< What an empty line costs among filled ones.
constexpr double anotherLine = 20;
constexpr int insidePair = 600; ///< Of a pair that would fit in a line.

constexpr size_t mostPlacesPerColumn = 4; ///< Of half a column.

constexpr double unreachable = std::numeric_limits<double>::infinity();

/// One way of choosing: which places are considered, and which width lines should have.
class Search
{
public:
    Search(std::span<const BreakPoint> points, int begin, int end, int limit, bool insideToo, Scratch &scratch)
        : m_limit(limit)
        , m_insideToo(insideToo)
        , m_nodes(scratch.nodes)
        , m_places(scratch.places)
        , m_costs(scratch.costs)
    {
        m_places.clear();
        m_costs.clear();
        m_places.push_back({.point = 0, .endWidth = begin, .beginWidth = begin, .cost = 0});
        for (size_t i = 0; i < points.size(); ++i) {
            const int cost = costOf(points[i]);
            if (!insideToo && cost >= BreakPoints::together)
                continue;
            m_places.push_back(
                {.point = i, .endWidth = points[i].endWidth, .beginWidth = points[i].beginWidth, .cost = cost});
            m_costs.push_back(cost);
        }
        m_places.push_back({.point = points.size(), .endWidth = end, .beginWidth = end, .cost = 0});
        std::sort(m_costs.begin(), m_costs.end());
    }

    /// Less than this no choice of so many lines costs. Blanks that vanish at breaks may spare one of them.
    double least(int lines) const
    {
        const size_t places = std::min(static_cast<size_t>(lines) - 1, m_costs.size());
        const auto end = m_costs.begin() + static_cast<std::ptrdiff_t>(places);
        return lines * anotherLine + std::accumulate(m_costs.begin(), end, 0.0);
    }

    /// The least cost of a choice whose lines are near `target` wide, unreachable when no choice fits.
    double run(double target)
    {
        const size_t last = m_places.size() - 1;
        m_nodes.assign(last + 1, {.cost = unreachable, .from = -1});
        m_nodes[0].cost = 0;
        const double scale = raggedness / (target * target);
        for (size_t to = 1; to <= last; ++to) {
            const int lineEnd = m_places[to].endWidth;
            const double cost = anotherLine + m_places[to].cost;
            // Characters without width must not make a line of thousands.
            const size_t first = to - std::min(to, static_cast<size_t>(m_limit) * mostPlacesPerColumn);
            for (size_t from = to; from-- > first;) {
                const int width = lineEnd - m_places[from].beginWidth;
                // A single character may be wider than the line, when all places are considered.
                if (width > m_limit && !(m_insideToo && from + 1 == to))
                    break;
                const double off = width - target;
                const double total = m_nodes[from].cost + cost + off * off * scale;
                if (total < m_nodes[to].cost)
                    m_nodes[to] = {.cost = total, .from = static_cast<int>(from)};
            }
        }
        return m_nodes[last].cost;
    }

    /// The choice that run found last.
    void read(std::vector<size_t> &chosen) const
    {
        chosen.clear();
        for (int node = m_nodes.back().from; node > 0; node = m_nodes[static_cast<size_t>(node)].from)
            chosen.push_back(m_places[static_cast<size_t>(node)].point);
        std::reverse(chosen.begin(), chosen.end());
    }

private:
    int costOf(const BreakPoint &point) const
    {
        return point.cost + (point.pairWidth > 0 && point.pairWidth <= m_limit ? insidePair : 0);
    }

    int m_limit;
    bool m_insideToo;
    std::vector<Scratch::Node> &m_nodes;
    std::vector<Scratch::Place> &m_places; ///< Between the text's ends.
    std::vector<int> &m_costs;             ///< Of the places, ascending.
};

} // namespace

void choose(std::span<const BreakPoint> points, int begin, int end, int limit, Scratch &scratch,
            std::vector<size_t> &chosen)
{
    chosen.clear();
    const int width = end - begin;
    if (width <= limit)
        return;
    for (const bool insideToo : {false, true}) {
        Search search(points, begin, end, limit, insideToo, scratch);
        double best = unreachable;
        const int fewest = (width + limit - 1) / limit;
        // A line more is worth its price where it spares a bad break; two more hardly ever are.
        for (int lines = fewest; lines <= fewest + 2 && search.least(lines) < best; ++lines) {
            const double cost = search.run(double(width) / lines);
            if (cost < best) {
                best = cost;
                search.read(chosen);
            }
        }
        if (best < unreachable)
            return;
    }
}

} // namespace BalancedLines
