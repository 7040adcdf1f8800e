#pragma once

#include "app/model/ai/CueOwnership.h"
#include "core/review/ReviewRows.h"

class AISettings;

/// Proofreading a track, and what a person takes of what was proposed.
///
/// The proofreading itself owns the cues. What it proposes lies beside them as rows, until the next one: while every
/// cue has the text that it had or the one that is proposed, the rows can be applied, in part and again. Once the cues
/// are others the rows are there to compare.
class Review : public QObject
{
    Q_OBJECT

public:
    /// All of them must live as long as this.
    Review(EditedSession &session, CueOwnership &owner, const AISettings &settings);

    const QList<ReviewRow> &aiReviewRows() const { return m_rows; } ///< A row for each cue, or none.
    std::optional<QUuid> aiReviewTrackID() const { return m_trackID; }
    const QString &aiReviewSource() const { return m_source; } ///< What the track was called.
    /// The cues before rows were applied last; empty when none were.
    QList<Subtitle> aiReviewBefore() const { return m_applied ? m_applied->before : QList<Subtitle>(); }

    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why something was not done.

    /// The name of the track that holds the originals of the selected one, cue for cue; absent when none does.
    std::optional<QString> reference() const;

    void start(); ///< Proofreads the selected track. Refused while the cues have an owner.
    bool isRunning() const { return m_isRunning; }

    /// Takes up a proofreading that is part of other work: `before` has become `after`, which the track holds already.
    void show(const QUuid &trackID, const QList<Subtitle> &before, const QList<Subtitle> &after);

    void setRowSelected(qsizetype row, bool selected);
    void selectAll(bool selected); ///< All rows that propose something.
    qsizetype selectedCount() const;
    bool isOutdated() const; ///< Whether the rows are only there to compare.
    void apply();            ///< Gives each cue the text of its row: the one proposed, or, unselected, its own.
    bool canUndo() const;    ///< While the cues are as the last applying left them.
    void undo();

Q_SIGNALS:
    void rowsChanged();
    void statusChanged();
    void runningChanged();
    void aboutToApply();               ///< The last moment to keep the session as it is.
    void done(const QString &message); ///< What has become of the cues.

private:
    void take(const QList<ReviewRow> &rows);
    void setStatus(const QString &status, bool isRefused = false);
    std::optional<SubtitleTrack> track() const;
    std::optional<SubtitleTrack> referenceTrack() const;
    void follow();

    EditedSession &m_session;
    CueOwnership &m_owner;
    const AISettings &m_settings;
    QList<ReviewRow> m_rows;
    std::optional<QUuid> m_trackID; ///< The track that the rows are about.
    QString m_source;
    QString m_status;
    bool m_isRefused = false;
    bool m_isRunning = false;
    std::optional<CueRestore> m_applied; ///< By the last applying.
};
