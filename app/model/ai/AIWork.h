#pragma once

#include "app/model/ai/CueOwnership.h"
#include "app/model/ai/WorkStages.h"

#include <QElapsedTimer>

/// The work that owns the cues, as who waits for it sees it. What it came to is told elsewhere.
class AIWork : public QObject
{
    Q_OBJECT

public:
    /// Follows `owner`, which must live as long as this.
    explicit AIWork(CueOwnership &owner);

    bool isRunning() const { return m_owner.isBusy(); }
    const WorkStages &stages() const { return m_stages; } ///< Those of the work before, while none goes on.
    qint64 elapsedMS() const;                             ///< Since it began; all that it took, once it is over.
    QString aiStatus() const { return isRunning() ? m_stages.progress().what : QString(); }

Q_SIGNALS:
    void changed(); ///< It began, went on or ended.

private:
    void followBusy();
    void followProgress();

    CueOwnership &m_owner;
    WorkStages m_stages;
    QElapsedTimer m_clock;
    qint64 m_tookMS = 0; ///< Of the work before.
};
