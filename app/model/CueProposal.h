#pragma once

#include "core/Check.h"
#include "core/FrameGrid.h"
#include "core/Subtitle.h"
#include "core/text/ChineseScript.h"
#include "core/text/breaking/BreakableCues.h"
#include "core/text/checks/CheckedCues.h"

#include <QStringList>

#include <set>

/// What a tool would make of the cues of a track, to be looked at before it is done.
struct CueProposal
{
    /// Cues that would change, or a cue that something was found about.
    struct Row
    {
        qsizetype cue = 0;                  ///< Position of the first of them in the track.
        QString before;                     ///< Texts as they are; several cues are divided by `border`.
        QString after;                      ///< The same as they would be; or what was found.
        std::optional<CheckRule> rule = {}; ///< What was found; absent where texts are compared.
        bool isFixable = false;             ///< Whether what was found can be mended without a person's judgement.

        friend bool operator==(const Row &, const Row &) = default;
    };

    /// Stands between the texts of two cues.
    static constexpr QStringView border = u" ┃ ";

    QList<Row> rows;       ///< By cue.
    QList<Subtitle> items; ///< The cues as they would be; of findings, as they are.
};

/// All of these may take long; `check` is called every few milliseconds, and what it throws passes through.
namespace CueProposals {

/// `items` are those that `breakable` was made of.
CueProposal broken(const BreakableCues &breakable, const QList<Subtitle> &items, const BreakableCues::Limits &limits,
                   const Check &check);

/// Only lines are broken, within their cues.
CueProposal wrapped(const BreakableCues &breakable, const QList<Subtitle> &items, int columns, const Check &check);

CueProposal joined(const QList<Subtitle> &items, int columns, const Check &check);

/// @throws PlatformError when the dictionaries are not installed
CueProposal converted(const QList<Subtitle> &items, ChineseScript::Target to, const QStringList &kept,
                      const Check &check);

CueProposal checked(const CheckedCues &cues, const CheckLimits &limits, FrameGrid grid, const Check &check);

/// The cues of `proposal`, which are findings, with those rows mended whose position is in `rows`; numbered from 1.
QList<Subtitle> mended(const CueProposal &proposal, const std::set<qsizetype> &rows, const CheckLimits &limits,
                       FrameGrid grid, const Check &check);

} // namespace CueProposals
