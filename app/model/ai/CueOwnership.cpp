#include "app/model/ai/CueOwnership.h"

using namespace Qt::StringLiterals;

CueOwnership::CueOwnership(EditedSession &session)
    : m_session(session)
{}

bool CueOwnership::refuses(const QString &sentence)
{
    if (m_isBusy)
        Q_EMIT refused(Failure{.sentence = sentence});
    return m_isBusy;
}

bool CueOwnership::claim()
{
    if (refuses(u"请等待当前任务完成。"_s))
        return false;
    m_isBusy = true;
    Q_EMIT busyChanged();
    return true;
}

/// Calls `take` first: until it is said that the cues are free, they are as the operation found them.
void CueOwnership::release(const std::function<void()> &take)
{
    m_isBusy = false;
    try {
        m_session.asOneStep(take);
    } catch (const std::exception &error) {
        Q_EMIT refused(Failure::of(error));
    }
    Q_EMIT busyChanged();
    Q_EMIT released();
}

void CueOwnership::cancel()
{
    m_task.cancel();
}
