#include "app/model/SessionDifference.h"

#include <QHash>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Track = SessionDifference::Track;

const QString absentNow = u"（现在没有这一条）"_s;
const QString absentThen = u"（恢复后没有这一条）"_s;

/// A cue by all that is seen of it: what a list counts it as is none of that.
using Seen = std::pair<std::pair<qint64, qint64>, QString>;

Seen seen(const Subtitle &cue)
{
    return {{cue.start, cue.end}, cue.text};
}

QString inSeconds(const Subtitle &cue)
{
    return u"%1–%2 秒"_s.arg(double(cue.start) / 1000.0, 0, 'f', 3).arg(double(cue.end) / 1000.0, 0, 'f', 3);
}

/// The text of a cue; with its times where these are not as in `other`.
QString shown(const Subtitle &cue, const Subtitle &other)
{
    return cue.start == other.start && cue.end == other.end ? cue.text : inSeconds(cue) + u' ' + cue.text;
}

/// Positions of cues that the other list has not, as they are seen.
QList<qsizetype> withoutMatch(const QList<Subtitle> &cues, const QList<Subtitle> &others, SparseCheck &goOn)
{
    QHash<Seen, qsizetype> left;
    for (const Subtitle &cue : others)
        ++left[seen(cue)];
    QList<qsizetype> result;
    for (qsizetype i = 0; i < cues.size(); ++i) {
        goOn();
        const auto found = left.find(seen(cues[i]));
        if (found != left.end() && *found > 0)
            --*found;
        else
            result += i;
    }
    return result;
}

class Comparison
{
public:
    Comparison(SessionDifference &result, const Check &check)
        : m_result(result)
        , m_goOn(check)
    {}

    void compare(const QString &label, const QList<Subtitle> &now, const QList<Subtitle> &then)
    {
        if (now.constData() == then.constData() && now.size() == then.size())
            return;
        // Most differ in a few places, or in one.
        const auto front = std::ranges::mismatch(now, then);
        const auto back = std::mismatch(now.rbegin(), std::make_reverse_iterator(front.in1), then.rbegin(),
                                        std::make_reverse_iterator(front.in2));
        compareMiddle(label, now.sliced(front.in1 - now.begin(), back.first.base() - front.in1),
                      then.sliced(front.in2 - then.begin(), back.second.base() - front.in2), front.in1 - now.begin());
    }

private:
    /// `first`: how many cues stand before the lists.
    void compareMiddle(const QString &label, const QList<Subtitle> &now, const QList<Subtitle> &then, qsizetype first)
    {
        std::vector<std::pair<qint64, CueProposal::Row>> rows; // with the time
        const QList<qsizetype> fresh = withoutMatch(then, now, m_goOn);
        // What has the same begin or the same number is the same cue, changed.
        QHash<qint64, qsizetype> byStart;
        QHash<qint64, qsizetype> byID;
        for (const qsizetype i : fresh) {
            byStart.insert(then[i].start, i);
            byID.insert(then[i].id, i);
        }
        std::set<qsizetype> open(fresh.begin(), fresh.end());
        for (const qsizetype i : withoutMatch(now, then, m_goOn)) {
            m_goOn();
            qsizetype other = byStart.value(now[i].start, -1);
            if (!open.contains(other))
                other = byID.value(now[i].id, -1);
            if (open.erase(other) > 0) {
                ++m_result.changed;
                rows.push_back(
                    {now[i].start,
                     {.cue = first + i, .before = shown(now[i], then[other]), .after = shown(then[other], now[i])}});
            } else {
                ++m_result.removed;
                rows.push_back({now[i].start, {.cue = first + i, .before = now[i].text, .after = absentThen}});
            }
        }
        for (const qsizetype i : open) {
            ++m_result.added;
            rows.push_back({then[i].start, {.cue = first + i, .before = absentNow, .after = then[i].text}});
        }
        if (rows.empty())
            return;
        std::ranges::stable_sort(rows, {}, [](const auto &row) { return row.first; });
        Track track{.label = label};
        for (auto &row : rows)
            track.rows.append(std::move(row.second));
        m_result.tracks.append(std::move(track));
    }

    SessionDifference &m_result;
    SparseCheck m_goOn;
};

qsizetype counterpartOf(const SubtitleTrack &track, const QList<SubtitleTrack> &others)
{
    const auto find = [&](auto field) {
        const auto found = std::ranges::find(others, track.*field, field);
        return found == others.end() ? -1 : found - others.begin();
    };
    const qsizetype sameID = find(&SubtitleTrack::id);
    return sameID >= 0 ? sameID : find(&SubtitleTrack::label);
}

} // namespace

SessionDifference SessionDifference::between(const LintoraSession &now, const LintoraSession &then, const Check &check)
{
    SessionDifference result;
    Comparison comparison(result, check);
    QList<SubtitleTrack> left = *now.tracks;
    const bool areOnly = left.size() == 1 && then.tracks->size() == 1;
    for (const SubtitleTrack &track : *then.tracks) {
        const qsizetype found = areOnly ? 0 : counterpartOf(track, left);
        comparison.compare(track.label, found < 0 ? QList<Subtitle>() : left.takeAt(found).items, track.items);
    }
    for (const SubtitleTrack &track : std::as_const(left))
        comparison.compare(track.label, track.items, {});
    return result;
}
