#pragma once

#include "app/model/ai/CueOwnership.h"
#include "core/Failure.h"
#include "core/timing/CueDrag.h"

/// What is done to the times of the selected track's cues by ear and by eye: along its sound, instead of in the table.
///
/// Each operation is one step of the history. While long work owns the cues all are refused. Cues are named by their
/// position; one that is not there is none.
class CueTiming : public QObject
{
    Q_OBJECT

public:
    CueTiming(EditedSession &session, CueOwnership &owner);

    FrameGrid grid() const; ///< Of the selected track's rate.
    bool mayEdit();         ///< Whether nothing owns the cues; otherwise that is said.

    bool setTimes(const QList<CueTimes> &times); ///< Of several cues together. False when refused.

    /// Puts a border to the frame at `timeMS`, the one of a cue that touches it along with it. It does not pass another
    /// cue: there it stays. False when refused.
    bool setStart(qsizetype cue, qint64 timeMS);
    bool setEnd(qsizetype cue, qint64 timeMS);

    /// A cue for something that is to be written, where it belongs by its start. Its position; absent when refused.
    std::optional<qsizetype> insert(qint64 startMS, qint64 endMS);

    /// Cuts a cue at the frame at `timeMS`. The position of the second part; absent when refused.
    std::optional<qsizetype> cut(qsizetype cue, qint64 timeMS);

Q_SIGNALS:
    void done();                          ///< What was asked for.
    void refused(const Failure &failure); ///< Why it was not.

private:
    const QList<Subtitle> &items() const { return m_session.state().items; }
    bool change(const QString &title, const std::function<QList<Subtitle>()> &change);
    QList<Subtitle> timed(const QList<CueTimes> &times) const; ///< The items with these.
    QList<Subtitle> dragged(const CueTimeline &timeline, const CueDrag::Grip &grip, qint64 byMS) const;

    EditedSession &m_session;
    CueOwnership &m_owner;
};
