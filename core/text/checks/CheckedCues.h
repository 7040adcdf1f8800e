#pragma once

#include "core/FrameGrid.h"
#include "core/Subtitle.h"
#include "core/text/checks/CheckLimits.h"
#include "core/text/checks/ReadingSpeed.h"
#include "core/text/checks/TextFaults.h"
#include "core/text/checks/TrackFaults.h"

#include <functional>
#include <vector>

/// Something that a careful editor would look at again.
struct CheckFinding
{
    qsizetype cue = 0; ///< Position in the list, from 0.
    CheckRule rule = CheckRule::readingSpeed;
    double value = 0;       ///< What was found: characters a second, milliseconds, columns, lines, or how many faults.
    double limit = 0;       ///< What is allowed, in the same unit.
    bool isFixable = false; ///< Whether CheckFixes mends it without a person's judgement.
    QString detail;         ///< The characters or words in question; for some rules empty.

    QString message() const; ///< With the number that is wrong, without a full stop.

    friend bool operator==(const CheckFinding &, const CheckFinding &) = default;
};

/// Cues whose texts have been looked through once, so that limits can be tried on them quickly.
class CheckedCues
{
public:
    using Check = std::function<void()>;

    /// `terms` as in CheckLimits. `check` is called every few milliseconds; what it throws passes through.
    CheckedCues(QList<Subtitle> items, const QList<QStringList> &terms, const Check &check);

    /// All findings, by cue and rule. Neighbours are those in the order of start times, whatever the list's own.
    QList<CheckFinding> findings(const CheckLimits &limits, FrameGrid grid, const Check &check) const;

    const QList<Subtitle> &items() const { return m_items; }

    /// The cue that starts next in time, or null behind the last.
    const Subtitle *next(qsizetype cue) const;

    const Subtitle *previous(qsizetype cue) const; ///< The same backwards.

    /// Milliseconds that the cue needs to be read.
    ReadingSpeed::Need need(qsizetype cue, const ReadingSpeed::Speed &speed) const;

private:
    struct Facts
    {
        size_t firstLine = 0; ///< In m_lines.
        int lines = 0;
        int width = 0; ///< Half columns of the widest line.
        int blanks = 0;
        int mixedWidth = 0;
        qsizetype next = -1; ///< In the order of start times, as is the previous one.
        qsizetype previous = -1;
    };

    class Finder;

    void look(qsizetype cue);
    void order();

    QList<Subtitle> m_items;
    std::vector<Facts> m_facts;
    std::vector<ReadingSpeed::Characters> m_lines;
    std::vector<std::pair<qsizetype, TextFaults::BadCharacters>> m_badCharacters; ///< By cue, of those that have some.
    QList<TrackFaults::LoneBracket> m_brackets;
    QList<TrackFaults::Variant> m_variants;
    QList<TrackFaults::OddNumber> m_numbers;
};
