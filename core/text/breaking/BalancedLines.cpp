#include "core/text/breaking/BalancedLines.h"

#include <algorithm>
#include <limits>

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
        : m_points(points)
        , m_begin(begin)
        , m_end(end)
        , m_limit(limit)
        , m_insideToo(insideToo)
        , m_nodes(scratch.nodes)
        , m_places(scratch.places)
    {
        m_places.clear();
        for (size_t i = 0; i < points.size(); ++i) {
            if (!insideToo && costOf(points[i]) >= BreakPoints::together)
                continue;
            m_places.push_back(i);
            m_cheapest = std::min(m_cheapest, double(costOf(points[i])));
        }
    }

    /// Less than this no choice of so many lines costs.
    double least(int lines) const { return lines * anotherLine + (lines > 1 ? (lines - 1) * m_cheapest : 0); }

    /// The least cost of a choice whose lines are near `target` wide, unreachable when no choice fits.
    double run(double target)
    {
        const size_t last = m_places.size() + 1;
        m_nodes.assign(last + 1, {.cost = unreachable, .from = -1});
        m_nodes[0].cost = 0;
        const double scale = raggedness / (target * target);
        for (size_t to = 1; to <= last; ++to) {
            const int lineEnd = to == last ? m_end : m_points[m_places[to - 1]].endWidth;
            const double cost = anotherLine + (to == last ? 0 : costOf(m_points[m_places[to - 1]]));
            // Characters without width must not make a line of thousands.
            const size_t first = to - std::min(to, static_cast<size_t>(m_limit) * mostPlacesPerColumn);
            for (size_t from = to; from-- > first;) {
                const int width = lineEnd - (from == 0 ? m_begin : m_points[m_places[from - 1]].beginWidth);
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
            chosen.push_back(m_places[static_cast<size_t>(node) - 1]);
        std::reverse(chosen.begin(), chosen.end());
    }

private:
    int costOf(const BreakPoint &point) const
    {
        return point.cost + (point.pairWidth > 0 && point.pairWidth <= m_limit ? insidePair : 0);
    }

    std::span<const BreakPoint> m_points;
    int m_begin;
    int m_end;
    int m_limit;
    bool m_insideToo;
    double m_cheapest = unreachable; ///< Of the places.
    std::vector<Scratch::Node> &m_nodes;
    std::vector<size_t> &m_places;
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
