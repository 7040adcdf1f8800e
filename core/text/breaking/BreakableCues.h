#pragma once

#include "core/FrameGrid.h"
#include "core/HeardWord.h"
#include "core/Subtitle.h"
#include "core/text/breaking/BreakPoints.h"

#include <functional>
#include <span>
#include <vector>

/// Cues with every place at which they may be broken. The places are found once; trying a limit on them is quick enough
/// to follow a slider.
///
/// A broken text has the same characters in the same order, but for blanks at a break. It is broken behind clause marks
/// best, then before conjunctions and behind particles, then between words; inside a word, a number with its unit, or a
/// pair of brackets or quotation marks only where that alone is wider than a line. Line feeds that are there stay
/// lines' ends.
class BreakableCues
{
public:
    struct Limits
    {
        int columns = landscapeColumns; ///< Full-width columns a line may have, 1 or more; see ColumnWidth.
        int lines = 1;                  ///< Lines a cue may have, 1 or more.
        FrameGrid grid = {};            ///< Where the new cues begin and end.

        static constexpr int landscapeColumns = 16; ///< What reads well on a wide picture.
        static constexpr int portraitColumns = 10;  ///< The same on an upright one.
    };

    using Check = std::function<void()>;

    /// `check` is called every few milliseconds; what it throws passes through.
    BreakableCues(QList<Subtitle> items, const Check &check);

    /// Each cue that is wider than a line or has too many of them as several cues, which share its time by `words`,
    /// else by displayed width (see PieceTimes). Numbered from 1 when anything was broken. A cue too short to be shared
    /// stays whole.
    QList<Subtitle> inCues(const Limits &limits, std::span<const HeardWord> words, const Check &check) const;

    /// Each cue with its lines broken at the width, as many as that takes: `lines` does not count. Ids and times stay.
    QList<Subtitle> inLines(const Limits &limits, const Check &check) const;

private:
    struct Line
    {
        qsizetype begin = 0; ///< In the text of the cue.
        int start = 0;       ///< Half columns of blanks at the front.
        int width = 0;       ///< To the end of its last character, in half columns.
        qsizetype trimmedBegin = 0;
        qsizetype trimmedEnd = 0;
        size_t firstPoint = 0; ///< In m_points, as is the next one.
        size_t endPoint = 0;
    };

    class Pieces;

    void addLine(QStringView text, qsizetype begin, class WordBorders &words);
    std::span<const Line> linesOf(qsizetype cue) const;
    bool fits(qsizetype cue, const Limits &limits) const;

    QList<Subtitle> m_items;
    std::vector<size_t> m_firstLine; ///< Of each cue, and one more; in m_lines.
    std::vector<Line> m_lines;
    std::vector<BreakPoint> m_points;
};
