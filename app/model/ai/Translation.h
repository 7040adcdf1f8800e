#pragma once

#include "ai/text/Protocol.h"
#include "app/model/ai/CueOwnership.h"
#include "app/model/ai/GlossaryTerms.h"

#include <QHash>

class AISettings;

/// Translating a track, which owns the cues. It ends with a new track beside those that are there, as one step, whose
/// cues keep ids and times.
class Translation : public QObject
{
    Q_OBJECT

public:
    /// All of them must live as long as this.
    Translation(EditedSession &session, CueOwnership &owner, const AISettings &settings, const GlossaryTerms &glossary);

    /// The track to translate: the one that was chosen, while it is there, else the selected one.
    std::optional<QUuid> trackID() const;
    void setTrackID(const QUuid &id);

    /// The direction that was chosen for that track, else the one that its language suggests.
    SubtitleAI::Direction aiDirection() const;
    void setDirection(SubtitleAI::Direction direction);

    void start(); ///< Refused while the cues have an owner.
    bool isRunning() const { return m_isRunning; }

    /// What became of a person's terms in a cue of the selected track that was translated with them.
    struct Terms
    {
        QList<GlossaryTerm> kept;
        QList<GlossaryTerm> missing;
    };
    Terms terms(const Subtitle &cue) const;

Q_SIGNALS:
    void changed(); ///< What is to be translated, or how.
    void runningChanged();
    void termsChanged();
    void done(const QString &message);

private:
    /// What a track was translated with.
    struct Origin
    {
        QList<GlossaryTerm> glossary;
        QHash<qint64, QString> texts; ///< Of the originals, by their numbers.
    };

    struct Request
    {
        QList<Subtitle> cues;
        SubtitleAI::Direction direction;
        QList<GlossaryTerm> glossary;
    };

    QList<Subtitle> cues() const;
    void take(const Request &request, const QList<Subtitle> &translated);
    void follow();

    EditedSession &m_session;
    CueOwnership &m_owner;
    const AISettings &m_settings;
    const GlossaryTerms &m_glossary;
    std::optional<QUuid> m_trackID;
    std::optional<SubtitleAI::Direction> m_direction;
    QHash<QUuid, Origin> m_origins; ///< By track.
    bool m_isRunning = false;
};
