#include "core/text/checks/CheckFixes.h"

#include "core/text/Characters.h"

#include <algorithm>
#include <numeric>

namespace CheckFixes {

namespace {

using Mended = std::optional<Subtitle>;

Mended withText(Subtitle cue, const QString &text)
{
    if (text == cue.text || Characters::trimmed(text).isEmpty())
        return std::nullopt;
    cue.text = text;
    return cue;
}

Mended withEnd(Subtitle cue, qint64 end, const CheckLimits &limits)
{
    if (end == cue.end || end <= cue.start || (end > cue.end && end - cue.start > limits.longestMS))
        return std::nullopt;
    cue.end = end;
    return cue;
}

/// Lasting `lengthMS` at least, to a frame's end or to the next cue.
Mended extended(const Subtitle &cue, const Subtitle *next, qint64 lengthMS, const CheckLimits &limits, FrameGrid grid)
{
    const qint64 needed = cue.start + lengthMS;
    qint64 frame = grid.frame(needed);
    while (grid.time(frame) < needed)
        ++frame;
    qint64 end = grid.time(frame);
    if (next && end + grid.time(limits.smallestGapFrames) > next->start)
        end = next->start;
    return end >= needed && end > cue.end ? withEnd(cue, end, limits) : std::nullopt;
}

Mended snapped(Subtitle cue, FrameGrid grid)
{
    cue.start = grid.snapped(cue.start);
    cue.end = grid.snapped(cue.end);
    return cue.end > cue.start ? Mended(cue) : std::nullopt;
}

Mended joinedWithPrevious(const CheckFinding &finding, const CheckedCues &cues, const CheckLimits &limits,
                          FrameGrid grid)
{
    // With a silence between them both may be meant.
    if (finding.value >= double(grid.time(limits.smallestGapFrames)))
        return std::nullopt;
    Subtitle previous = *cues.previous(finding.cue);
    previous.end = std::max(previous.end, cues.items()[finding.cue].end);
    return previous.end - previous.start <= limits.longestMS ? Mended(previous) : std::nullopt;
}

/// The order in which rules are fixed: what one fix brings about, a later one may mend.
constexpr CheckRule order[] = {
    CheckRule::badCharacters, CheckRule::blanks,   CheckRule::mixedWidth, CheckRule::mixedTerms,   CheckRule::doubled,
    CheckRule::overlap,       CheckRule::offFrame, CheckRule::tooShort,   CheckRule::readingSpeed, CheckRule::smallGap};

/// Limits that look at one rule alone.
CheckLimits only(CheckRule rule, const CheckLimits &limits)
{
    CheckLimits result = limits;
    for (const CheckRule other : CheckRules::all()) {
        if (other != rule)
            result.off.insert(other);
    }
    return result;
}

/// A list on its way through the fixes; the positions that its cues had at first go along.
class Repair
{
public:
    Repair(const QList<Subtitle> &items, const CheckLimits &limits, FrameGrid grid, const std::function<void()> &check)
        : m_items(items)
        , m_origins(items.size())
        , m_limits(limits)
        , m_grid(grid)
        , m_check(check)
    {
        std::iota(m_origins.begin(), m_origins.end(), qsizetype(0));
    }

    void fix(CheckRule rule, const Chosen &chosen)
    {
        const CheckLimits limits = only(rule, m_limits);
        const CheckedCues cues(m_items, limits.terms, m_check);
        std::vector<bool> gone(static_cast<size_t>(m_items.size()));
        for (const CheckFinding &finding : inTime(cues.findings(limits, m_grid, m_check))) {
            if (!finding.isFixable || !chosen(m_origins[finding.cue], rule))
                continue;
            if (rule == CheckRule::doubled)
                joinWithPrevious(finding.cue, cues, gone);
            else if (rule == CheckRule::mixedTerms)
                unify(finding);
            else
                m_items[finding.cue] = *mended(finding, cues, limits, m_grid);
        }
        remove(gone);
    }

    QList<Subtitle> take() { return std::move(m_items); }

private:
    QList<CheckFinding> inTime(QList<CheckFinding> findings) const
    {
        std::stable_sort(findings.begin(), findings.end(), [&](const CheckFinding &a, const CheckFinding &b) {
            return m_items[a.cue].start < m_items[b.cue].start;
        });
        return findings;
    }

    /// Of several the same the first stays.
    void joinWithPrevious(qsizetype cue, const CheckedCues &cues, std::vector<bool> &gone)
    {
        const Subtitle *previous = cues.previous(cue);
        qsizetype first = previous - cues.items().data();
        while (gone[static_cast<size_t>(first)])
            first = cues.previous(first) - cues.items().data();
        const qint64 end = std::max(m_items[first].end, m_items[cue].end);
        if (end - m_items[first].start > m_limits.longestMS)
            return;
        m_items[first].end = end;
        gone[static_cast<size_t>(cue)] = true;
    }

    /// A cue may hold several terms.
    void unify(const CheckFinding &finding)
    {
        QString &text = m_items[finding.cue].text;
        text = TrackFaults::unified(text, finding.detail.section(u'\n', 0, 0), finding.detail.section(u'\n', 1));
    }

    void remove(const std::vector<bool> &gone)
    {
        for (qsizetype i = m_items.size() - 1; i >= 0; --i) {
            if (gone[static_cast<size_t>(i)]) {
                m_items.removeAt(i);
                m_origins.removeAt(i);
            }
        }
    }

    QList<Subtitle> m_items;
    QList<qsizetype> m_origins;
    const CheckLimits &m_limits;
    FrameGrid m_grid;
    const std::function<void()> &m_check;
};

} // namespace

std::optional<Subtitle> mended(const CheckFinding &finding, const CheckedCues &cues, const CheckLimits &limits,
                               FrameGrid grid)
{
    const Subtitle &cue = cues.items()[finding.cue];
    const Subtitle *const next = cues.next(finding.cue);
    switch (finding.rule) {
    case CheckRule::readingSpeed:
        return extended(cue, next, cues.need(finding.cue, limits.speed).ms, limits, grid);
    case CheckRule::tooShort:
        return extended(cue, next, limits.shortestMS, limits, grid);
    case CheckRule::smallGap:
        return withEnd(cue, next->start, limits);
    case CheckRule::overlap:
        return next->start - cue.start >= limits.shortestMS ? withEnd(cue, next->start, limits) : std::nullopt;
    case CheckRule::offFrame:
        return snapped(cue, grid);
    case CheckRule::doubled:
        return joinedWithPrevious(finding, cues, limits, grid);
    case CheckRule::blanks:
        return withText(cue, TextFaults::withoutBlanks(cue.text));
    case CheckRule::mixedWidth:
        return withText(cue, TextFaults::withOneWidth(cue.text));
    case CheckRule::mixedTerms:
        return withText(
            cue, TrackFaults::unified(cue.text, finding.detail.section(u'\n', 0, 0), finding.detail.section(u'\n', 1)));
    case CheckRule::badCharacters:
        return withText(cue, TextFaults::withoutBadCharacters(cue.text));
    case CheckRule::tooLong:
    case CheckRule::tooWide:
    case CheckRule::tooManyLines:
    case CheckRule::mixedDigits:
    case CheckRule::brackets:
        break;
    }
    return std::nullopt;
}

bool isFixable(const CheckFinding &finding, const CheckedCues &cues, const CheckLimits &limits, FrameGrid grid)
{
    return mended(finding, cues, limits, grid).has_value();
}

QList<Subtitle> fixed(const QList<Subtitle> &items, const std::set<CheckRule> &rules, const Chosen &chosen,
                      const CheckLimits &limits, FrameGrid grid, const std::function<void()> &check)
{
    Repair repair(items, limits, grid, check);
    for (const CheckRule rule : order) {
        if (rules.contains(rule))
            repair.fix(rule, chosen);
    }
    return repair.take();
}

} // namespace CheckFixes
