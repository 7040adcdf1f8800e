#pragma once

#include "core/Subtitle.h"

/// Makes one bilingual list of cues out of two languages, the inverse of LanguageSeparation.
namespace LanguageMerging {

struct Merged
{
    QList<Subtitle> items;      ///< By start, numbered from 1.
    QList<Subtitle> unmatchedA; ///< Of the first list, those that no cue of the second shares its time with. They are
                                ///< among the items all the same.
    QList<Subtitle> unmatchedB; ///< And of the second.
};

/// Each cue of `b` joins the cue of `a` with which it shares the most time, if that is at least half of the shorter
/// one's. A cue of the result has the time of its cue of `a` and the texts, that of `a` first, `separator` between;
/// several cues of `b` follow each other in order of time. A cue without a partner stays as it is.
///
/// ```
///   a       |--- 你好 ---|       |-- 再见 --|
///   b        |-- Hello --|                    |-- Bye --|
///   result  |--- 你好   -|       |-- 再见 --| |-- Bye --|
///                Hello
/// ```
Merged merge(const QList<Subtitle> &a, const QList<Subtitle> &b, const QString &separator = QStringLiteral("\n"));

} // namespace LanguageMerging
