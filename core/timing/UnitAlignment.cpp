#include "core/timing/UnitAlignment.h"

#include "core/text/SequenceAlignment.h"

#include <algorithm>
#include <limits>

namespace UnitAlignment {

namespace {

using Key = ComparisonKeys::Key;
using Keys = std::vector<Key>;

// A single wrong character is cheaper to replace than to skip on both sides; from seven in a row on it is the other way
// round. Four like ones in a row are worth two gaps more.
constexpr int sameScore = 4;
constexpr int soundScore = 2;
constexpr int replacedScore = -4;
constexpr int openScore = -7;
constexpr int goOnScore = -1;
constexpr int impossible = std::numeric_limits<int>::min() / 2;

/// How an alignment of two beginnings ends.
enum State : quint8
{
    paired,
    scriptSkipped,
    heardSkipped
};

/// The state to come from with the best score; of equal ones the first.
struct Best
{
    int score = impossible;
    State from = paired;

    void offer(int other, State state)
    {
        if (other > score) {
            score = other;
            from = state;
        }
    }
};

/// A stretch of both sequences, half-open.
struct Window
{
    size_t script = 0;
    size_t scriptEnd = 0;
    size_t heard = 0;
    size_t heardEnd = 0;

    size_t rows() const { return scriptEnd - script; }
    size_t columns() const { return heardEnd - heard; }
};

class Aligner
{
public:
    Aligner(std::span<const ComparisonKeys::Unit> script, std::span<const ComparisonKeys::Unit> heard,
            ComparisonKeys &keys, const Check &check)
        : m_keys(keys)
        , m_check(check)
        , m_script(keysOf(script))
        , m_heard(keysOf(heard))
        , m_partners(script.size())
    {}

    std::vector<Partner> run()
    {
        align({.scriptEnd = m_script.size(), .heardEnd = m_heard.size()}, longestAnchor);
        return std::move(m_partners);
    }

private:
    static constexpr size_t longestAnchor = 8;
    static constexpr size_t shortestAnchor = 4;

    /// The best scores of a row, by how they end.
    struct Cell
    {
        int scores[3] = {impossible, impossible, impossible};
    };

    static Keys keysOf(std::span<const ComparisonKeys::Unit> units)
    {
        Keys keys(units.size());
        std::ranges::transform(units, keys.begin(), &ComparisonKeys::Unit::key);
        return keys;
    }

    void ask() const
    {
        if (m_check)
            m_check();
    }

    void pair(size_t script, size_t heard, Likeness likeness)
    {
        m_partners[script] = {.heard = static_cast<qint32>(heard), .likeness = likeness};
    }

    /// Between anchors of `length` units; where they leave too much, with shorter ones.
    void align(const Window &window, size_t length)
    {
        if (window.rows() == 0 || window.columns() == 0)
            return;
        const bool fits = (window.rows() + 1) * (window.columns() + 1) <= mostCells;
        if (length < longestAnchor && fits)
            return alignWhole(window);
        if (length < shortestAnchor)
            return;
        const auto anchors = SequenceAlignment::anchors(std::span(m_script).subspan(window.script, window.rows()),
                                                        std::span(m_heard).subspan(window.heard, window.columns()),
                                                        length, [this] { ask(); });
        Window between{.script = window.script, .heard = window.heard};
        for (const SequenceAlignment::Anchor &anchor : anchors) {
            between.scriptEnd = window.script + static_cast<size_t>(anchor.source);
            between.heardEnd = window.heard + static_cast<size_t>(anchor.script);
            align(between, length / 2);
            for (size_t i = 0; i < length; ++i)
                pair(between.scriptEnd + i, between.heardEnd + i, Likeness::same);
            between.script = between.scriptEnd + length;
            between.heard = between.heardEnd + length;
        }
        between.scriptEnd = window.scriptEnd;
        between.heardEnd = window.heardEnd;
        align(between, length / 2);
    }

    Likeness likeness(Key script, Key heard)
    {
        if (script == heard)
            return Likeness::same;
        return m_keys.soundAlike(script, heard) ? Likeness::sound : Likeness::replaced;
    }

    static int scoreOf(Likeness likeness)
    {
        return likeness == Likeness::same ? sameScore : likeness == Likeness::sound ? soundScore : replacedScore;
    }

    /// Works out one cell and what each of its states comes from, two bits a state.
    quint8 work(const Cell &diagonal, const Cell &above, const Cell &left, int score, Cell &cell) const
    {
        Best best[3];
        for (const State from : {paired, heardSkipped, scriptSkipped}) {
            best[paired].offer(diagonal.scores[from] + score, from);
            best[scriptSkipped].offer(above.scores[from] + (from == scriptSkipped ? goOnScore : openScore), from);
            best[heardSkipped].offer(left.scores[from] + (from == heardSkipped ? goOnScore : openScore), from);
        }
        quint8 trace = 0;
        for (const State state : {paired, scriptSkipped, heardSkipped}) {
            cell.scores[state] = best[state].score;
            trace = static_cast<quint8>(trace | best[state].from << (2 * state));
        }
        return trace;
    }

    void alignWhole(const Window &window)
    {
        ask();
        const size_t width = window.columns() + 1;
        m_trace.assign((window.rows() + 1) * width, 0);
        m_above.assign(width, {});
        m_row.assign(width, {});
        const Cell nothing;
        for (size_t i = 0; i <= window.rows(); ++i) {
            for (size_t j = 0; j < width; ++j) {
                if (i == 0 && j == 0) {
                    m_row[0].scores[paired] = 0;
                    continue;
                }
                const bool hasBoth = i > 0 && j > 0;
                const int score =
                    hasBoth ? scoreOf(likeness(m_script[window.script + i - 1], m_heard[window.heard + j - 1])) : 0;
                m_trace[i * width + j] = work(hasBoth ? m_above[j - 1] : nothing, i > 0 ? m_above[j] : nothing,
                                              j > 0 ? m_row[j - 1] : nothing, score, m_row[j]);
            }
            std::swap(m_above, m_row);
            if (i % 64 == 0)
                ask();
        }
        traceBack(window);
    }

    void traceBack(const Window &window)
    {
        const size_t width = window.columns() + 1;
        size_t i = window.rows();
        size_t j = window.columns();
        Best end;
        for (const State state : {paired, heardSkipped, scriptSkipped})
            end.offer(m_above[j].scores[state], state);
        for (State state = end.from; i > 0 || j > 0;) {
            const auto from = static_cast<State>(m_trace[i * width + j] >> (2 * state) & 3);
            if (state == paired) {
                const size_t script = window.script + --i;
                const size_t heard = window.heard + --j;
                pair(script, heard, likeness(m_script[script], m_heard[heard]));
            } else if (state == scriptSkipped) {
                --i;
            } else {
                --j;
            }
            state = from;
        }
    }

    ComparisonKeys &m_keys;
    const Check &m_check;
    Keys m_script;
    Keys m_heard;
    std::vector<Partner> m_partners;
    std::vector<quint8> m_trace;
    std::vector<Cell> m_above;
    std::vector<Cell> m_row;
};

} // namespace

std::vector<Partner> align(std::span<const ComparisonKeys::Unit> script, std::span<const ComparisonKeys::Unit> heard,
                           ComparisonKeys &keys, const Check &check)
{
    return Aligner(script, heard, keys, check).run();
}

} // namespace UnitAlignment
