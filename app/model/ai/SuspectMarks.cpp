#include "app/model/ai/SuspectMarks.h"

#include <algorithm>

using namespace Qt::StringLiterals;

SuspectMarks::SuspectMarks(EditedSession &session, CueOwnership &owner)
    : m_session(session)
    , m_owner(owner)
{
    connect(&session, &EditedSession::changed, this, [this] {
        if (!m_marks.isEmpty())
            Q_EMIT changed();
    });
}

void SuspectMarks::mark(const QUuid &track, const QList<Subtitle> &cues, const QList<SuspectCue> &suspects)
{
    if (suspects.isEmpty())
        return;
    QHash<qint64, Mark> &marks = m_marks[track];
    for (const SuspectCue &suspect : suspects) {
        const Subtitle &cue = cues.at(suspect.index);
        marks.insert(cue.id, {.cue = cue,
                              .reasons = suspect.reasons,
                              .isTicked = suspect.reasons.testFlag(SuspectCue::Reason::silence)});
    }
    Q_EMIT changed();
}

const SuspectMarks::Mark *SuspectMarks::find(const Subtitle &cue) const
{
    const auto track = m_marks.constFind(trackID());
    if (track == m_marks.cend())
        return nullptr;
    const auto mark = track->constFind(cue.id);
    if (mark == track->cend())
        return nullptr;
    const bool isAsItCame =
        mark->reasons.testFlag(SuspectCue::Reason::times) ? mark->cue == cue : mark->cue.text == cue.text;
    return isAsItCame ? &*mark : nullptr;
}

bool SuspectMarks::areAboutTimes() const
{
    const auto track = m_marks.constFind(trackID());
    return track != m_marks.cend() && !track->isEmpty() && track->cbegin()->reasons == SuspectCue::Reason::times;
}

void SuspectMarks::dismiss(const Subtitle &cue)
{
    if (!find(cue))
        return;
    m_marks[trackID()].remove(cue.id);
    Q_EMIT changed();
}

std::optional<SuspectCue::Reasons> SuspectMarks::reasons(const Subtitle &cue) const
{
    const Mark *const mark = find(cue);
    return mark ? std::optional(mark->reasons) : std::nullopt;
}

bool SuspectMarks::isTicked(const Subtitle &cue) const
{
    const Mark *const mark = find(cue);
    return mark && mark->isTicked;
}

void SuspectMarks::setTicked(const Subtitle &cue, bool ticked)
{
    const Mark *const mark = find(cue);
    if (!mark || mark->isTicked == ticked)
        return;
    m_marks[trackID()][cue.id].isTicked = ticked;
    Q_EMIT changed();
}

qsizetype SuspectMarks::count() const
{
    const auto isMarked = [this](const Subtitle &cue) { return find(cue) != nullptr; };
    return m_marks.isEmpty() ? 0 : std::ranges::count_if(m_session.state().items, isMarked);
}

qsizetype SuspectMarks::tickedCount() const
{
    const auto ticked = [this](const Subtitle &cue) { return isTicked(cue); };
    return m_marks.isEmpty() ? 0 : std::ranges::count_if(m_session.state().items, ticked);
}

std::optional<qsizetype> SuspectMarks::next(qsizetype after) const
{
    const QList<Subtitle> &items = m_session.state().items;
    for (qsizetype step = 1; step <= items.size(); ++step) {
        const qsizetype place = (after + step) % items.size();
        if (place >= 0 && find(items.at(place)))
            return place;
    }
    return std::nullopt;
}

void SuspectMarks::removeTicked()
{
    const qsizetype count = tickedCount();
    if (count == 0 || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    QList<Subtitle> items = m_session.state().items;
    items.removeIf([this](const Subtitle &cue) { return isTicked(cue); });
    m_session.replaceItems(items, u"移除可疑字幕"_s);
    Q_EMIT done(u"已移除 %1 条可疑字幕，可撤销"_s.arg(count));
}
