#include "core/text/breaking/PieceTimes.h"

#include "core/text/Characters.h"
#include "core/text/ColumnWidth.h"

#include <algorithm>

namespace PieceTimes {

namespace {

/// A place in the text whose time is known.
struct Anchor
{
    qsizetype position;
    qint64 ms;
};

/// Characters of the text that may be passed over to find the next word: marks that nobody speaks, and what a person
/// has put in.
constexpr qsizetype farthest = 12;

std::vector<Anchor> anchorsOf(const Subtitle &cue, std::span<const HeardWord> words)
{
    std::vector<Anchor> anchors = {{.position = 0, .ms = cue.start}};
    qsizetype at = 0;
    const auto add = [&](qsizetype position, qint64 ms) {
        anchors.push_back({.position = position, .ms = std::clamp(ms, anchors.back().ms, cue.end)});
    };
    for (const HeardWord &word : words) {
        const QStringView text = QStringView(word.text).trimmed();
        if (text.isEmpty())
            continue;
        const qsizetype reach = std::min(cue.text.size() - at, farthest + text.size());
        const qsizetype found = QStringView(cue.text).sliced(at, reach).indexOf(text, 0, Qt::CaseInsensitive);
        if (found < 0)
            continue;
        add(at + found, word.startMS);
        at += found + text.size();
        add(at, word.endMS);
    }
    anchors.push_back({.position = cue.text.size(), .ms = cue.end});
    return anchors;
}

struct Time
{
    qint64 ms;
    bool isHeard; ///< And not worked out.
};

/// The time at a place: of several anchors there the first or the last; between anchors by displayed width.
Time timeAt(const Subtitle &cue, const std::vector<Anchor> &anchors, qsizetype position, bool last)
{
    const auto byPosition = [](const Anchor &a, const Anchor &b) { return a.position < b.position; };
    const auto [from, to] = std::equal_range(anchors.begin(), anchors.end(), Anchor{position, 0}, byPosition);
    if (from != to)
        return {.ms = last ? std::prev(to)->ms : from->ms, .isHeard = true};
    const Anchor &before = *std::prev(from);
    const QStringView text = QStringView(cue.text).sliced(before.position, from->position - before.position);
    const qint64 part = ColumnWidth::of(text.first(position - before.position));
    const qint64 whole = std::max(ColumnWidth::of(text), 1);
    return {.ms = before.ms + (from->ms - before.ms) * part / whole, .isHeard = false};
}

bool isSpoken(QChar unit)
{
    return unit.isSurrogate() || Characters::isAlphanumeric(unit.unicode());
}

/// The end of a piece without the marks at its end, which nobody hears.
qsizetype spokenEnd(QStringView text, const Piece &piece)
{
    qsizetype end = piece.end;
    while (end > piece.begin && !isSpoken(text[end - 1]))
        --end;
    return end > piece.begin ? end : piece.end;
}

qsizetype spokenBegin(QStringView text, const Piece &piece)
{
    qsizetype begin = piece.begin;
    while (begin < piece.end && !isSpoken(text[begin]))
        ++begin;
    return begin < piece.end ? begin : piece.begin;
}

constexpr qint64 silentFrames = 2; ///< Up to so many are closed.

/// The whole interval, cut at the frames of `grid`; absent when there are too few of them.
std::optional<std::vector<Interval>> placed(const Subtitle &cue, const std::vector<Interval> &wanted, FrameGrid grid)
{
    qint64 first = grid.frame(cue.start);
    while (grid.time(first) <= cue.start)
        ++first;
    qint64 last = grid.frame(cue.end);
    while (grid.time(last) >= cue.end)
        --last;
    const auto inner = static_cast<qint64>(wanted.size()) - 1;
    if (last - first + 1 < inner)
        return std::nullopt;
    std::vector<Interval> result = wanted;
    result.front().start = cue.start;
    result.back().end = cue.end;
    qint64 previous = first - 1;
    for (size_t i = 1; i < result.size(); ++i) {
        const qint64 left = inner - static_cast<qint64>(i);
        const qint64 start = std::clamp(grid.frame(wanted[i].start), previous + 1, last - left);
        const qint64 end = grid.frame(wanted[i - 1].end);
        // The one before keeps at least a frame, and a short silence is closed.
        const bool isClosed = end <= previous || start - end <= silentFrames;
        result[i].start = grid.time(start);
        result[i - 1].end = isClosed ? result[i].start : grid.time(end);
        previous = start;
    }
    return result;
}

} // namespace

std::optional<std::vector<Interval>> shared(const Subtitle &cue, std::span<const Piece> pieces,
                                            std::span<const HeardWord> words, FrameGrid grid)
{
    std::vector<Interval> wanted(pieces.size());
    if (words.empty()) {
        qint64 whole = 0;
        for (const Piece &piece : pieces)
            whole += ColumnWidth::of(QStringView(cue.text).sliced(piece.begin, piece.end - piece.begin));
        qint64 before = 0;
        for (size_t i = 0; i < pieces.size(); ++i) {
            wanted[i].start = cue.start + (cue.end - cue.start) * before / std::max<qint64>(whole, 1);
            if (i > 0)
                wanted[i - 1].end = wanted[i].start;
            before += ColumnWidth::of(QStringView(cue.text).sliced(pieces[i].begin, pieces[i].end - pieces[i].begin));
        }
    } else {
        const std::vector<Anchor> anchors = anchorsOf(cue, words);
        bool endIsHeard = false;
        for (size_t i = 0; i < pieces.size(); ++i) {
            const Time start = timeAt(cue, anchors, spokenBegin(cue.text, pieces[i]), true);
            const Time end = timeAt(cue, anchors, spokenEnd(cue.text, pieces[i]), false);
            wanted[i] = {.start = start.ms, .end = end.ms};
            // Only where both sides were heard is there a silence between them.
            if (i > 0 && !(start.isHeard && endIsHeard))
                wanted[i - 1].end = start.ms;
            endIsHeard = end.isHeard;
        }
    }
    constexpr FrameGrid milliseconds{.numerator = 1'000, .denominator = 1};
    auto result = placed(cue, wanted, grid);
    return result ? result : placed(cue, wanted, milliseconds);
}

std::span<const HeardWord> within(std::span<const HeardWord> words, const Subtitle &cue)
{
    const auto middle = [](const HeardWord &word) { return word.startMS + (word.endMS - word.startMS) / 2; };
    const auto first = std::partition_point(words.begin(), words.end(),
                                            [&](const HeardWord &word) { return middle(word) < cue.start; });
    const auto last =
        std::partition_point(first, words.end(), [&](const HeardWord &word) { return middle(word) < cue.end; });
    return {first, last};
}

} // namespace PieceTimes
