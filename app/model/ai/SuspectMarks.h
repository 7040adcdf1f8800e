#pragma once

#include "app/model/ai/CueOwnership.h"
#include "core/review/SuspectCues.h"

#include <QHash>

/// Cues that the recogniser has likely invented, or whose times were guessed, marked for a person to judge. Nothing
/// goes unless the person takes it away.
///
/// A mark stays with its cue as long as what it is about, the text or text and times, is as it came; undoing brings it
/// back. Marks last for the run.
class SuspectMarks : public QObject
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    SuspectMarks(EditedSession &session, CueOwnership &owner);

    /// Marks cues of a track that has just come. `suspects` are about `cues`. What nothing sounds under is ticked.
    void mark(const QUuid &track, const QList<Subtitle> &cues, const QList<SuspectCue> &suspects);

    // Of the selected track, whose marks are all about times or all about texts.

    bool areAboutTimes() const;        ///< Whether what there is to be judged is where the cues lie.
    void dismiss(const Subtitle &cue); ///< Takes the mark away: the person has judged the cue.

    std::optional<SuspectCue::Reasons> reasons(const Subtitle &cue) const; ///< Absent for a cue without a mark.
    bool isTicked(const Subtitle &cue) const;                              ///< Whether removeTicked() takes it away.
    void setTicked(const Subtitle &cue, bool ticked);
    qsizetype count() const;
    qsizetype tickedCount() const;

    /// Where the next marked cue after position `after` stands, beginning anew behind the last; absent without any.
    std::optional<qsizetype> next(qsizetype after) const;

    void removeTicked(); ///< As one step.

Q_SIGNALS:
    void changed();
    void done(const QString &message);

private:
    struct Mark
    {
        Subtitle cue; ///< As it came.
        SuspectCue::Reasons reasons;
        bool isTicked = false;
    };

    QUuid trackID() const { return m_session.state().selectedTrackID.value_or(QUuid()); }
    const Mark *find(const Subtitle &cue) const;

    EditedSession &m_session;
    CueOwnership &m_owner;
    QHash<QUuid, QHash<qint64, Mark>> m_marks; ///< By track and cue number.
};
