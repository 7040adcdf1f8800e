#pragma once

#include "core/Subtitle.h"

/// What a person does to single cues of a list.
///
/// Cues are named by their position in the list, from 0, and every operation returns the new list. The cues that stay
/// keep their ids; a new one gets the highest id of the list + 1. What comes out is valid: a cue shows text that can be
/// written into a title, and ends after it starts.
/// @throws ConversionError with the sentence that says what is wrong; positions that do not exist are the caller's
/// fault.
namespace CueEditing {

/// Milliseconds up to which times are taken, a hundred hours.
constexpr qint64 latest = 360'000'000;

/// `text` as a cue keeps it: line breaks of any kind become line feeds, white space at both ends goes, and so do lines
/// without text. @throws ConversionError when nothing is left, or naming cue `number` when it cannot be written
QString tidied(const QString &text, qint64 number);

QList<Subtitle> settingText(QList<Subtitle> items, qsizetype index, const QString &text);

/// @throws ConversionError unless 0 <= start < end <= latest
void checkTimes(qint64 startMS, qint64 endMS);

/// Neither the order of the list nor other cues change. @throws ConversionError as checkTimes
QList<Subtitle> settingTimes(QList<Subtitle> items, qsizetype index, qint64 startMS, qint64 endMS);

/// Puts a cue with a placeholder text behind the cue at `after`, or before all with -1. It takes the time up to the
/// next cue, two seconds at most; where there is less than half a second it takes a second all the same.
QList<Subtitle> inserting(QList<Subtitle> items, qsizetype after);

/// With `cues` from elsewhere where they belong by their times, under new ids. @throws ConversionError when their times
/// or texts are none
QList<Subtitle> placing(QList<Subtitle> items, QList<Subtitle> cues);

/// Without the cues at `indices`, in any order.
QList<Subtitle> removing(QList<Subtitle> items, QList<qsizetype> indices);

/// Splits the text of a cue before its UTF-16 unit `position`. The time is shared in proportion to the characters that
/// are not white space. @throws ConversionError when one side would be without text or without time
QList<Subtitle> splitting(QList<Subtitle> items, qsizetype index, qsizetype position);

/// One cue of two neighbours, with the first one's id, from the earlier start to the later end. Their texts become one
/// as LineJoining has it. @throws ConversionError when there is no next cue
QList<Subtitle> joining(QList<Subtitle> items, qsizetype index);

/// Where a cue that starts at `startMS` belongs in a list ordered by start: behind those that start no later.
qsizetype positionFor(const QList<Subtitle> &items, qint64 startMS);

/// The highest id of the list + 1; 1 for an empty list.
qint64 nextID(const QList<Subtitle> &items);

} // namespace CueEditing
