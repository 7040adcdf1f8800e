#include "app/model/CueProposal.h"

#include "core/text/breaking/CueJoining.h"
#include "core/text/checks/CheckFixes.h"

using namespace Qt::StringLiterals;

namespace CueProposals {

namespace {

/// `before` and `after`, where one cue of either list has become several of the other, side by side: where a cue of
/// both ends, a row is complete.
QList<CueProposal::Row> sideBySide(const QList<Subtitle> &before, const QList<Subtitle> &after, SparseCheck goOn)
{
    QList<CueProposal::Row> rows;
    qsizetype old = 0;
    for (qsizetype fresh = 0; fresh < after.size() && old < before.size(); ++fresh, ++old) {
        goOn();
        CueProposal::Row row{.cue = old, .before = before[old].text, .after = after[fresh].text};
        while (before[old].end != after[fresh].end) {
            const bool isJoined = before[old].end < after[fresh].end;
            qsizetype &position = isJoined ? old : fresh;
            const QList<Subtitle> &list = isJoined ? before : after;
            if (position + 1 >= list.size())
                break;
            (isJoined ? row.before : row.after) += CueProposal::border.toString() + list[++position].text;
        }
        if (row.before != row.after)
            rows.append(std::move(row));
    }
    return rows;
}

QString inSeconds(qint64 milliseconds)
{
    return QString::number(double(milliseconds) / 1000.0, 'f', 3);
}

/// What mending changes, for a person.
QString change(const Subtitle &before, const Subtitle &after, CheckRule rule)
{
    if (rule == CheckRule::doubled)
        return u"与前一条合并"_s;
    if (before.text != after.text)
        return u"改为“%1”"_s.arg(after.text);
    if (before.start == after.start)
        return (after.end > before.end ? u"延至 %1 秒"_s : u"止于 %1 秒"_s).arg(inSeconds(after.end));
    return u"改为 %1–%2 秒"_s.arg(inSeconds(after.start), inSeconds(after.end));
}

/// Of cues that have other texts and nothing else.
CueProposal inPlace(const QList<Subtitle> &items, const QList<Subtitle> &changed)
{
    CueProposal proposal{.rows = {}, .items = changed};
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (items[i].text != changed[i].text)
            proposal.rows.append({.cue = i, .before = items[i].text, .after = changed[i].text});
    }
    return proposal;
}

} // namespace

CueProposal broken(const BreakableCues &breakable, const QList<Subtitle> &items, const BreakableCues::Limits &limits,
                   const Check &check)
{
    CueProposal proposal{.rows = {}, .items = breakable.inCues(limits, {}, check)};
    proposal.rows = sideBySide(items, proposal.items, SparseCheck(check));
    return proposal;
}

CueProposal wrapped(const BreakableCues &breakable, const QList<Subtitle> &items, int columns, const Check &check)
{
    return inPlace(items, breakable.inLines({.columns = columns}, check));
}

CueProposal joined(const QList<Subtitle> &items, int columns, const Check &check)
{
    CueProposal proposal{.rows = {}, .items = CueJoining::joined(items, {.columns = columns}, check)};
    proposal.rows = sideBySide(items, proposal.items, SparseCheck(check));
    return proposal;
}

CueProposal converted(const QList<Subtitle> &items, ChineseScript::Target to, const QStringList &kept,
                      const Check &check)
{
    return inPlace(items, ChineseScript::converted(items, to, kept, check));
}

CueProposal checked(const CheckedCues &cues, const CheckLimits &limits, FrameGrid grid, const Check &check)
{
    SparseCheck goOn(check);
    CueProposal proposal{.rows = {}, .items = cues.items()};
    for (const CheckFinding &finding : cues.findings(limits, grid, check)) {
        goOn();
        const Subtitle &cue = cues.items()[finding.cue];
        QString message = finding.message();
        if (finding.isFixable) {
            if (const auto mended = CheckFixes::mended(finding, cues, limits, grid))
                message += u" → "_s + change(cue, *mended, finding.rule);
        }
        proposal.rows.append({.cue = finding.cue,
                              .before = cue.text,
                              .after = message,
                              .rule = finding.rule,
                              .isFixable = finding.isFixable});
    }
    return proposal;
}

QList<Subtitle> mended(const CueProposal &proposal, const std::set<qsizetype> &rows, const CheckLimits &limits,
                       FrameGrid grid, const Check &check)
{
    std::set<std::pair<qsizetype, CheckRule>> chosen;
    std::set<CheckRule> rules;
    for (const qsizetype row : rows) {
        const CueProposal::Row &finding = proposal.rows.at(row);
        chosen.emplace(finding.cue, *finding.rule);
        rules.insert(*finding.rule);
    }
    const auto isChosen = [&](qsizetype cue, CheckRule rule) { return chosen.contains({cue, rule}); };
    QList<Subtitle> items = CheckFixes::fixed(proposal.items, rules, isChosen, limits, grid, check);
    for (qsizetype i = 0; i < items.size(); ++i)
        items[i].id = i + 1;
    return items;
}

} // namespace CueProposals
