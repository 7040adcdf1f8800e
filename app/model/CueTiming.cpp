#include "app/model/CueTiming.h"

#include "app/model/SessionTracks.h"
#include "core/CueEditing.h"
#include "core/timing/CueCut.h"

#include <algorithm>

using namespace Qt::StringLiterals;

CueTiming::CueTiming(EditedSession &session, CueOwnership &owner)
    : m_session(session)
    , m_owner(owner)
{}

FrameGrid CueTiming::grid() const
{
    const FrameRate &rate = m_session.state().options.rate;
    return {.numerator = rate.numerator, .denominator = rate.denominator};
}

bool CueTiming::mayEdit()
{
    return !m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s);
}

bool CueTiming::change(const QString &title, const std::function<QList<Subtitle>()> &change)
{
    if (!mayEdit())
        return false;
    try {
        const QList<Subtitle> changed = change();
        if (m_session.state().tracks && !m_session.state().tracks->isEmpty())
            m_session.replaceItems(changed, title);
        else
            m_session.replace(SessionTracks::importing(m_session.state(), changed, m_session.state().source), title);
    } catch (const std::exception &error) {
        Q_EMIT refused(Failure::of(error));
        return false;
    }
    Q_EMIT done();
    return true;
}

QList<Subtitle> CueTiming::timed(const QList<CueTimes> &times) const
{
    QList<Subtitle> changed = items();
    for (const CueTimes &each : times)
        changed = CueEditing::settingTimes(std::move(changed), each.cue, each.start, each.end);
    return changed;
}

bool CueTiming::setTimes(const QList<CueTimes> &times)
{
    const auto isThere = [&](const CueTimes &each) { return each.cue >= 0 && each.cue < items().size(); };
    if (!std::ranges::all_of(times, isThere))
        return false;
    return change(u"修改时间"_s, [&] { return timed(times); });
}

QList<Subtitle> CueTiming::dragged(const CueTimeline &timeline, const CueDrag::Grip &grip, qint64 byMS) const
{
    return timed(CueDrag::dragged(timeline, grip, byMS, {.grid = grid()}));
}

bool CueTiming::setStart(qsizetype cue, qint64 timeMS)
{
    if (cue < 0 || cue >= items().size())
        return false;
    return change(u"修改时间"_s, [&] {
        const CueTimeline timeline(items());
        const Subtitle &held = items().at(cue);
        const FrameGrid frames = grid();
        const qint64 start = frames.snapped(timeMS);
        CueEditing::checkTimes(start, frames.snapped(held.end)); // a drag would stop there, and say nothing
        const CueDrag::Grip alone{.cue = cue, .part = CueDrag::Part::start};
        return dragged(timeline, CueDrag::jointAtStart(timeline, cue, frames).value_or(alone), start - held.start);
    });
}

bool CueTiming::setEnd(qsizetype cue, qint64 timeMS)
{
    if (cue < 0 || cue >= items().size())
        return false;
    return change(u"修改时间"_s, [&] {
        const CueTimeline timeline(items());
        const Subtitle &held = items().at(cue);
        const FrameGrid frames = grid();
        const qint64 end = frames.snapped(timeMS);
        CueEditing::checkTimes(frames.snapped(held.start), end);
        const CueDrag::Grip alone{.cue = cue, .part = CueDrag::Part::end};
        return dragged(timeline, CueDrag::jointAtEnd(timeline, cue, frames).value_or(alone), end - held.end);
    });
}

std::optional<qsizetype> CueTiming::insert(qint64 startMS, qint64 endMS)
{
    const qsizetype position = CueEditing::positionFor(items(), startMS);
    const bool isTaken = change(u"插入字幕"_s, [&] {
        return CueEditing::settingTimes(CueEditing::inserting(items(), position - 1), position, startMS, endMS);
    });
    return isTaken ? std::optional(position) : std::nullopt;
}

std::optional<qsizetype> CueTiming::cut(qsizetype cue, qint64 timeMS)
{
    if (cue < 0 || cue >= items().size())
        return std::nullopt;
    const bool isTaken = change(u"拆分字幕"_s, [&] { return CueCut::cut(items(), cue, timeMS, grid()); });
    return isTaken ? std::optional(cue + 1) : std::nullopt;
}
