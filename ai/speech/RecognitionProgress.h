#pragma once

#include "core/Progress.h"

#include <QByteArray>

/// How far the recogniser is, from the lines that it prints while it works: "[00:00:04.000 --> 00:00:07.500]  …".
class RecognitionProgress
{
public:
    /// Of a recording of `durationMS`, which is positive. `what` is what the person reads.
    RecognitionProgress(QString what, qint64 durationMS);

    /// Takes what was printed since the last call, `elapsedMS` after the start. The time left is told when enough has
    /// been done to tell it from.
    Progress hear(QByteArrayView printed, qint64 elapsedMS);

private:
    QString m_what;
    qint64 m_durationMS;
    qint64 m_reachedMS = 0;
    QByteArray m_line; ///< The beginning of a line whose end is not there yet.
};
