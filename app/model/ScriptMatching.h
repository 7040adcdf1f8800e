#pragma once

#include "app/model/ai/CueOwnership.h"
#include "core/text/ScriptAlignment.h"

/// Correcting the wording of the selected track by a transcript: what was pasted, what was proposed for it, and what
/// became of that.
///
/// Editing goes on while a transcript is matched; a change of cues or transcript drops what it comes to.
class ScriptMatching : public QObject
{
    Q_OBJECT

public:
    ScriptMatching(EditedSession &session, CueOwnership &owner);

    const QString &text() const { return m_text; } ///< The transcript, as pasted.
    void setText(const QString &text);

    const QList<ScriptMatchRow> &rows() const { return m_rows; } ///< A row for each cue, or none.
    const QStringList &unmatched() const { return m_unmatched; } ///< What of the transcript found no cue.
    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why something was not done.

    void match();
    void setRowSelected(qsizetype row, bool selected);
    void selectAll(bool selected); ///< Every row that changes something, or none.

    /// Whether rows that would change nothing but punctuation and white space are left as they are. Ticks stay.
    bool leavesPunctuation() const { return m_leavesPunctuation; }
    void setLeavesPunctuation(bool leaves);

    void apply();         ///< Puts what the selected rows propose into the cues.
    bool canUndo() const; ///< While the cues are as the last applying left them.
    void undo();

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void textChanged();
    void rowsChanged(); ///< Rows and what was not matched.
    void statusChanged();
    void aboutToApply();               ///< The last moment to keep the session as it is.
    void done(const QString &message); ///< What has become of the cues.

private:
    /// What was matched. What is proposed for it is of use as long as it stands.
    struct Question
    {
        std::optional<QUuid> trackID;
        QList<Subtitle> items;
        QString text; ///< The transcript.
    };

    bool isAboutTheseCues() const;
    void takeResult(const ScriptMatchResult &result);
    void showProposed();
    void setStatus(const QString &status, bool isRefused = false);
    void clearRows();

    EditedSession &m_session;
    CueOwnership &m_owner;
    QString m_text;
    QList<ScriptMatchRow> m_proposed; ///< All that was proposed; `m_rows` is what of it is offered.
    QList<ScriptMatchRow> m_rows;
    bool m_leavesPunctuation = false;
    QStringList m_unmatched;
    QString m_status;
    bool m_isRefused = false;
    Question m_question;
    std::optional<CueRestore> m_applied; ///< By the last applying.
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
};
