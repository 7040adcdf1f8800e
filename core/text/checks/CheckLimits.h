#pragma once

#include "core/text/checks/CheckRule.h"
#include "core/text/checks/ReadingSpeed.h"

#include <QStringList>

#include <set>

/// What a house style allows: a named set of limits that people may edit.
struct CheckLimits
{
    QString name;
    std::set<CheckRule> off; ///< Rules that are not looked at.

    ReadingSpeed::Speed speed;      ///< Characters a second.
    qint64 shortestMS = 700;        ///< Of a cue.
    qint64 longestMS = 7'000;       ///< Of a cue.
    qint64 smallestGapFrames = 2;   ///< Between cues that do not touch.
    double columns = 16;            ///< Of a line, full-width; see ColumnWidth.
    qint64 lines = 2;               ///< Of a cue.
    qint64 doubledWithinMS = 2'000; ///< A text is doubled when it comes again within this gap.
    QList<QStringList> terms;       ///< Ways to write one term, the preferred one first.

    bool looksAt(CheckRule rule) const { return !off.contains(rule); }

    /// The sets that come with the program: "chinese", the default, and "english".
    static const QList<CheckLimits> &builtIn();

    static constexpr qint64 largestDocument = 1'048'576; ///< Bytes of one that is worth being read; ours are some 500.

    /// The document that written() returns; what is missing in it is as in the Chinese set.
    /// @throws PlatformError naming the key path of a limit that cannot be, or of a rule that there is not
    static CheckLimits read(const QByteArray &document);

    /// {"chinesePerSecond","columns","doubledWithinMS","latinPerSecond","lines","longestMS","name","off":[rule…],
    /// "shortestMS","smallestGapFrames","terms":[[…]…]}
    QByteArray written() const;

    friend bool operator==(const CheckLimits &, const CheckLimits &) = default;
};
