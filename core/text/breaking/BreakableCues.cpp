#include "core/text/breaking/BreakableCues.h"

#include "core/text/Characters.h"
#include "core/text/ColumnWidth.h"
#include "core/text/breaking/BalancedLines.h"
#include "core/text/breaking/PieceTimes.h"
#include "core/text/breaking/WordBorders.h"

#include <algorithm>
#include <limits>

using PieceTimes::Piece;

namespace {

/// Cues between two calls of check: a millisecond of work.
constexpr qsizetype checkEvery = 256;

/// A text no wider than this many half columns is never broken at a limit anyone would set, and needs no places.
constexpr int narrowest = 2;

} // namespace

/// Finds the lines of cue after cue under one limit.
class BreakableCues::Pieces
{
public:
    /// A line of the broken text, and how badly it is cut off from the one before.
    struct Part
    {
        Piece piece;
        int cost;
    };

    Pieces(const BreakableCues &cues, const Limits &limits)
        : m_cues(cues)
        , m_limits(limits)
    {}

    /// The lines of a cue, valid until the next call.
    const std::vector<Part> &lines(qsizetype cue)
    {
        m_parts.clear();
        for (const Line &line : m_cues.linesOf(cue)) {
            const std::span points =
                std::span(m_cues.m_points).subspan(line.firstPoint, line.endPoint - line.firstPoint);
            BalancedLines::choose(points, line.start, line.width, 2 * m_limits.columns, m_scratch, m_chosen);
            m_parts.push_back({.piece = {.begin = line.trimmedBegin, .end = line.trimmedEnd}, .cost = 0});
            for (const size_t index : m_chosen) {
                m_parts.back().piece.end = line.begin + points[index].end;
                m_parts.push_back({.piece = {.begin = line.begin + points[index].begin, .end = line.trimmedEnd},
                                   .cost = points[index].cost});
            }
        }
        return m_parts;
    }

    /// The same lines, in groups of as many as a cue may have: few groups, parted at the best places.
    const std::vector<Piece> &cues(qsizetype cue)
    {
        const std::vector<Part> &parts = lines(cue);
        const auto most = static_cast<size_t>(m_limits.lines);
        // From the end: the price of what follows, and where the next group begins.
        m_prices.assign(parts.size() + 1, {.price = 0, .next = 0});
        for (size_t first = parts.size(); first-- > 0;) {
            m_prices[first].price = std::numeric_limits<qint64>::max();
            for (size_t next = first + 1; next <= std::min(first + most, parts.size()); ++next) {
                constexpr qint64 anotherCue = 1'000'000;
                const qint64 price = anotherCue + m_prices[next].price + (next < parts.size() ? parts[next].cost : 0);
                if (price <= m_prices[first].price)
                    m_prices[first] = {.price = price, .next = next};
            }
        }
        m_groups.clear();
        for (size_t first = 0; first < parts.size(); first = m_prices[first].next)
            m_groups.push_back({.begin = parts[first].piece.begin, .end = parts[m_prices[first].next - 1].piece.end});
        return m_groups;
    }

    /// Appends the text of a group with its line breaks, as `lines` found them last.
    void appendText(const Piece &group, QStringView text, QString &out) const
    {
        bool isFirst = true;
        for (const Part &part : m_parts) {
            if (part.piece.begin < group.begin || part.piece.end > group.end)
                continue;
            if (!isFirst)
                out += u'\n';
            isFirst = false;
            out += text.sliced(part.piece.begin, part.piece.end - part.piece.begin);
        }
    }

private:
    struct Group
    {
        qint64 price;
        size_t next;
    };

    const BreakableCues &m_cues;
    const Limits &m_limits;
    BalancedLines::Scratch m_scratch;
    std::vector<size_t> m_chosen;
    std::vector<Part> m_parts;
    std::vector<Group> m_prices;
    std::vector<Piece> m_groups;
};

BreakableCues::BreakableCues(QList<Subtitle> items, const Check &check)
    : m_items(std::move(items))
{
    WordBorders words;
    m_firstLine.reserve(static_cast<size_t>(m_items.size()) + 1);
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        m_firstLine.push_back(m_lines.size());
        const QStringView text = m_items[i].text;
        for (const QStringView line : text.tokenize(u'\n'))
            addLine(line, line.data() - text.data(), words);
    }
    m_firstLine.push_back(m_lines.size());
}

void BreakableCues::addLine(QStringView text, qsizetype begin, WordBorders &words)
{
    const QStringView trimmed = Characters::trimmed(text);
    if (trimmed.isEmpty())
        return;
    Line line{.begin = begin, .firstPoint = m_points.size()};
    line.trimmedBegin = begin + (trimmed.data() - text.data());
    line.trimmedEnd = line.trimmedBegin + trimmed.size();
    line.start = ColumnWidth::of(text.first(line.trimmedBegin - begin));
    line.width = line.start + ColumnWidth::of(trimmed);
    if (line.width - line.start > narrowest)
        BreakPoints::find(text, words, m_points);
    line.endPoint = m_points.size();
    m_lines.push_back(line);
}

std::span<const BreakableCues::Line> BreakableCues::linesOf(qsizetype cue) const
{
    const size_t first = m_firstLine[static_cast<size_t>(cue)];
    return std::span(m_lines).subspan(first, m_firstLine[static_cast<size_t>(cue) + 1] - first);
}

bool BreakableCues::fits(qsizetype cue, const Limits &limits) const
{
    const auto lines = linesOf(cue);
    return lines.size() <= static_cast<size_t>(limits.lines) &&
           std::all_of(lines.begin(), lines.end(),
                       [&](auto &line) { return line.width - line.start <= 2 * limits.columns; });
}

QList<Subtitle> BreakableCues::inCues(const Limits &limits, std::span<const HeardWord> words, const Check &check) const
{
    Pieces pieces(*this, limits);
    QList<Subtitle> result;
    result.reserve(m_items.size());
    bool changed = false;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        const Subtitle &cue = m_items[i];
        if (fits(i, limits)) {
            result.append(cue);
            continue;
        }
        const std::vector<Piece> &groups = pieces.cues(i);
        const auto times = PieceTimes::shared(cue, groups, PieceTimes::within(words, cue), limits.grid);
        if (!times) {
            result.append(cue);
            continue;
        }
        changed = true;
        for (size_t group = 0; group < groups.size(); ++group) {
            Subtitle piece{.id = cue.id, .start = (*times)[group].start, .end = (*times)[group].end, .text = {}};
            pieces.appendText(groups[group], cue.text, piece.text);
            result.append(std::move(piece));
        }
    }
    for (qsizetype i = 0; changed && i < result.size(); ++i)
        result[i].id = i + 1;
    return result;
}

QList<Subtitle> BreakableCues::inLines(const Limits &limits, const Check &check) const
{
    const Limits lines{.columns = limits.columns, .lines = std::numeric_limits<int>::max(), .grid = limits.grid};
    Pieces pieces(*this, lines);
    QList<Subtitle> result = m_items;
    QString text;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i % checkEvery == 0)
            check();
        if (fits(i, lines))
            continue;
        pieces.lines(i);
        text.truncate(0);
        pieces.appendText({.begin = 0, .end = m_items[i].text.size()}, m_items[i].text, text);
        result[i].text = text;
    }
    return result;
}
