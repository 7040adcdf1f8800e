#pragma once

#include "app/model/ai/CueOwnership.h"
#include "app/model/ai/SuspectMarks.h"
#include "fcp/render/SpokenCues.h"

#include <QUrl>
#include <QUuid>

class AISettings;

/// Recognising speech: its sources and their notices, the language, and the work itself, which owns the cues. It ends
/// with a new track beside those that are there, as one step, and with the recogniser's own text beside one that was
/// proofread.
class Recognition : public QObject
{
    Q_OBJECT

public:
    enum class Source
    {
        none,
        media,   ///< An audio or video file.
        timeline ///< What can be heard of a timeline of Final Cut Pro.
    };

    /// Cues of a track that were proofread as they were recognised.
    struct Proofread
    {
        QUuid trackID;
        QList<Subtitle> recognised; ///< As the recogniser wrote them.
        QList<Subtitle> reviewed;   ///< As they came into the track: the same ids and times.
    };

    /// All of them must live as long as this.
    Recognition(EditedSession &session, CueOwnership &owner, SuspectMarks &suspects, const AISettings &settings);

    // The source: what came last, unless the person chooses the other one again.

    Source source() const { return m_source; }
    void setSource(Source source); ///< Of those that are there.

    const std::optional<QUrl> &aiMedia() const { return m_media; }
    void setMedia(const QUrl &file); ///< Is not read until the recognition begins.

    const std::optional<FCPAudioPlan> &aiTimelinePlan() const { return m_timeline; }
    void setTimeline(const std::optional<FCPAudioPlan> &plan);

    /// What can be heard of a timeline that was refused, without the clips that cannot be placed; nobody has asked yet.
    const std::optional<FCPAudioPlan> &offeredTimeline() const { return m_offered; }
    void offer(const std::optional<FCPAudioPlan> &plan);
    void takeOffered(); ///< Asks for it to become the timeline.

    QString title(Source source) const; ///< The file's name, the timeline's; empty for none.

    /// What of the source will not be heard as the person may expect, a sentence each.
    QStringList notices() const;

    /// Files of the timeline that are not where it says, as findMissing() found them last. Their paths.
    const QStringList &missingMedia() const { return m_missing; }
    void findMissing(); ///< Looks for them, on a worker.

    bool leavesOutMissing() const { return m_leavesOutMissing; } ///< Whether the rest is recognised without them.
    void setLeavesOutMissing(bool leavesOut);

    SubtitleAI::SpeechLanguage aiLanguage() const { return m_language; }
    void setLanguage(SubtitleAI::SpeechLanguage language);

    /// What is to be heard, but for who listens. @throws ConversionError when there is no source
    SpeechTask task() const;

    void start(); ///< Refused without a source, and while the cues have an owner.
    bool isRunning() const { return m_isRunning; }

    const std::optional<Proofread> &proofread() const { return m_proofread; } ///< Of the last recognition.

Q_SIGNALS:
    void sourceChanged(); ///< Or what is known of it.
    void offeredChanged();
    void offerTaken(const FCPAudioPlan &plan);
    void timelineChanged();
    void languageChanged();
    void proofreadChanged();
    void runningChanged();
    void done(const QString &message);
    void refused(const Failure &failure); ///< Why it did not begin, or what of it failed.

private:
    /// What a run has come to.
    struct Outcome
    {
        SpokenCues::Result result;
        QList<SuspectCue> suspects;
        QString source; ///< Display name.
    };

    void take(const Outcome &outcome);
    void follow();

    EditedSession &m_session;
    CueOwnership &m_owner;
    SuspectMarks &m_suspects;
    const AISettings &m_settings;
    bool m_isRunning = false;
    Source m_source = Source::none;
    std::optional<QUrl> m_media;
    std::optional<FCPAudioPlan> m_timeline;
    std::optional<FCPAudioPlan> m_offered;
    QStringList m_missing;
    bool m_leavesOutMissing = false;
    SubtitleAI::SpeechLanguage m_language = SubtitleAI::SpeechLanguage::automatic;
    std::optional<Proofread> m_proofread;
    BackgroundTask m_search{BackgroundTask::Order::newestOnly}; ///< Last, so that it ends first.
};
