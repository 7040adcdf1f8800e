#pragma once

#include "core/Subtitle.h"

/// Takes bilingual cues apart, line by line, into one list of cues a language.
namespace LanguageSeparation {

enum class Group
{
    chinese,
    english,
    unassigned ///< What is neither, so that nothing is lost.
};

QString rawValue(Group group); ///< As records hold it: "chinese", "english", "unassigned".
QString label(Group group);    ///< As people read it: "中文", "English", "待归类".

/// The group of one line, by the scripts of its letters and marks; all else in it is passed over. Kana, Hangul,
/// Cyrillic, Arabic, Hebrew and Thai make it `unassigned` whatever stands beside them. Else Han makes it `chinese`,
/// else Latin `english`. Without a letter of these scripts it is `unassigned`.
Group classify(QStringView line);

struct GroupedCues
{
    Group group = Group::unassigned;
    QList<Subtitle> items; ///< Never empty.

    friend bool operator==(const GroupedCues &, const GroupedCues &) = default;
};

/// The groups that received a line, in the order of the enumeration. A cue is in each group that has a line of it, with
/// its id and times and these lines, trimmed of blanks; empty lines go. A line break is any of Unicode's, or <br>.
///
/// A line without any letter follows the cue's other lines if these are all of one group; else it is `unassigned`.
QList<GroupedCues> split(const QList<Subtitle> &items);

/// Whether there are both Chinese and English cues. Otherwise separating is pointless: say nothingToSeparate().
bool holdsBothLanguages(const QList<GroupedCues> &groups);
QString nothingToSeparate();

} // namespace LanguageSeparation
