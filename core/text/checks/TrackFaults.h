#pragma once

#include "core/Subtitle.h"

#include <QStringList>

#include <functional>

/// Faults that show only when the cues of a track are compared. Each list is in the order of the cues.
namespace TrackFaults {

/// A bracket or quotation mark without its other half, at most a few cues away.
struct LoneBracket
{
    qsizetype cue = 0; ///< Position in the list, as below.
    QChar mark;
};

QList<LoneBracket> loneBrackets(const QList<Subtitle> &items);

/// A way of writing a term that is not the usual one of the track.
struct Variant
{
    qsizetype cue = 0;
    QString found;
    QString usual; ///< What the track writes most often, or, of the ways of a list, the first.
    qsizetype count = 0;
};

/// Latin names in differing capitals (Iphone, iPhone), and those of `terms`, lists of the ways to write one term, that
/// the track uses more than one of. A capital where a sentence begins is no other way.
QList<Variant> variants(const QList<Subtitle> &items, const QList<QStringList> &terms);

/// `text` with the term written in the usual way. A Latin name is replaced only where it stands alone.
QString unified(const QString &text, const QString &found, const QString &usual);

/// A number from ten on, written as the track mostly does not write numbers.
struct OddNumber
{
    qsizetype cue = 0;
    QString number;
};

QList<OddNumber> oddNumbers(const QList<Subtitle> &items);

} // namespace TrackFaults
