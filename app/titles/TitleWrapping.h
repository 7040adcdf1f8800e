#pragma once

#include <QList>
#include <QString>

#include <functional>

/// Breaks a title's text into lines that fit a width, as a Chinese typesetter would.
///
/// - No line begins with a mark that closes or goes on (。，、！？；：」』）】》〉…” and their kin), and none ends with
/// one
///   that opens (「『（【《〈“‘).
/// - Han characters and kana may be parted from each other and from a Latin word; a Latin word or a number never is
///   (don't, 3.5, 1,000, 25%). Latin words part at blanks. Doubled dashes and ellipses stay together.
/// - What cannot be parted and is wider than the width is broken between characters all the same, but not against the
///   first rule: a row of closing marks runs over the width instead.
/// - Line feeds of the text stay. Nothing is hyphenated, changed or lost.
namespace TitleWrapping {

/// One line as it is shown, and what of the text is not shown behind it.
struct Line
{
    QString text;
    QString ending; ///< The line feed, or the blanks where the text was broken; empty between Han characters.

    friend bool operator==(const Line &, const Line &) = default;
};

/// The width of a piece of one line, in the unit of the width wrapped to. May not fall when the piece grows.
using Measure = std::function<double(QStringView)>;

/// The lines of `text`, at least one. Every `text` and `ending`, joined in order, give the text back.
QList<Line> wrap(QStringView text, double width, const Measure &widthOf);

/// The same number of lines, each as narrow as that number allows: no single character is left on a last line. Where a
/// word had to be broken nothing is balanced.
QList<Line> wrapBalanced(QStringView text, double width, const Measure &widthOf);

/// Whether a line break is allowed in front of the character that begins at `position` of `line`, which holds no line
/// feed. False at both ends.
bool mayBreak(QStringView line, qsizetype position);

} // namespace TitleWrapping
