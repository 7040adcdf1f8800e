#pragma once

#include <QStringView>

#include <vector>

class WordBorders;

/// A place where a line may end and the next begin. What lies between, blanks, is not shown when the line is broken
/// here. Positions count UTF-16 code units from the start of the line, widths half columns from there.
struct BreakPoint
{
    qsizetype end = 0;   ///< Where the line before ends.
    qsizetype begin = 0; ///< Where the line after begins.
    int endWidth = 0;    ///< Width of the text up to `end`.
    int beginWidth = 0;  ///< Width of the text up to `begin`.
    int cost = 0;        ///< How badly the line is broken here; 0 is the best.
    int pairWidth = 0;   ///< Width of the innermost pair of brackets or quotation marks around the place, 0 for none.
};

/// Finds the places where a line of Chinese or English may be broken, and how well.
namespace BreakPoints {

/// From here on the place lies inside what belongs together: a word, a number with its unit, a mark and its word. It is
/// for those alone that are wider than a line.
constexpr int together = 500;

/// Appends every place inside `line`, a text without line feeds, ascending: one between any two characters but around
/// blanks. Of the text's ends there is none.
void find(QStringView line, WordBorders &words, std::vector<BreakPoint> &points);

} // namespace BreakPoints
