#include "app/model/ai/AIWork.h"

AIWork::AIWork(CueOwnership &owner)
    : m_owner(owner)
{
    connect(&owner, &CueOwnership::busyChanged, this, &AIWork::followBusy);
    connect(&owner.task(), &BackgroundTask::progressChanged, this, &AIWork::followProgress);
}

qint64 AIWork::elapsedMS() const
{
    return m_clock.isValid() ? m_clock.elapsed() : m_tookMS;
}

void AIWork::followBusy()
{
    if (isRunning()) {
        m_stages = {};
        m_clock.start();
    } else {
        m_tookMS = elapsedMS();
        m_stages.end(m_tookMS);
        m_clock.invalidate();
    }
    Q_EMIT changed();
}

void AIWork::followProgress()
{
    const auto progress = m_owner.task().progress();
    if (!progress || !isRunning())
        return;
    m_stages.take(*progress, elapsedMS());
    Q_EMIT changed();
}
