#pragma once

#include "core/Progress.h"

#include <QList>

/// The stages of long work, as who waits for it reads them: what is done, what is being done, and how long it may take.
///
/// Knows no clock: times are milliseconds since the work began.
class WorkStages
{
public:
    struct Stage
    {
        QString what;                       ///< Its sentence, without numbers that count on.
        qint64 beganMS = 0;                 ///< Since the work began.
        std::optional<qint64> endedMS = {}; ///< Absent while it goes on.

        friend bool operator==(const Stage &, const Stage &) = default;
    };

    void take(const Progress &progress, qint64 nowMS);
    void end(qint64 nowMS); ///< Of the work, and so of its last stage.

    const QList<Stage> &all() const { return m_stages; } ///< The last one goes on, until the work ends.
    const Progress &progress() const { return m_progress; }

    /// What is left of the stage under way, counted on from what was told last; absent while nobody knows. Never below
    /// a second, and no promise that was not kept stays: when news is late, so is the end.
    std::optional<qint64> leftMS(qint64 nowMS) const;

private:
    QList<Stage> m_stages;
    Progress m_progress;
    qint64 m_toldMS = 0; ///< When `m_progress` was told.
};
