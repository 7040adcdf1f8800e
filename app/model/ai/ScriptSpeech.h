#pragma once

#include "app/model/ai/CueOwnership.h"
#include "fcp/render/HeardSound.h"

#include <memory>

class AISettings;
class Recognition;
class ScriptMatching;
class SuspectMarks;

/// Making subtitles of a script: the wording is the script's, the times are those of the sound that speaks it.
///
/// Hearing the sound owns the cues, and is done once. The script, the width and the frame rate may change before and
/// after: what comes of them is worked out anew, and is a list to be looked at until it is applied, as a new track.
class ScriptSpeech : public QObject
{
    Q_OBJECT

public:
    /// What is heard, and what is spoken there, is chosen in `sound` and `script`. All of them must live as long as
    /// this.
    ScriptSpeech(EditedSession &session, CueOwnership &owner, SuspectMarks &suspects, const AISettings &settings,
                 const Recognition &sound, const ScriptMatching &script);

    static constexpr int narrowest = 4; ///< Columns.
    static constexpr int widest = 100;
    int columns() const { return m_columns; } ///< Full-width columns that a cue may have before it is broken.
    void setColumns(int columns);

    void start(); ///< Hears the sound. Refused without a script or a sound, and while the cues have an owner.
    bool isRunning() const { return m_isRunning; }
    bool hasHeard() const { return m_heard != nullptr; }
    const QString &source() const { return m_source; } ///< Display name of what was heard.

    /// What came of it last. Empty, or about another script, until isCurrent().
    const ScriptTimingResult &result() const { return m_result; }
    bool isCurrent() const { return m_isCurrent; }
    bool canApply() const { return m_isCurrent && !m_owner.isBusy(); }
    void apply(); ///< Adds the cues as a track of their own, as one step. Those that are unsure are marked.

    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why something was not done.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void columnsChanged();
    void runningChanged();
    void resultChanged(); ///< Or whether it is current.
    void statusChanged();
    void done(const QString &message); ///< What has become of the cues.
    void refused(const Failure &failure);

private:
    /// What the result is about.
    struct Question
    {
        QString script;
        ScriptTiming::Rules rules;

        friend bool operator==(const Question &, const Question &) = default;
    };

    Question question() const;
    void take(HeardSound heard, const QString &source);
    void update();
    void takeResult(const ScriptTimingResult &result);
    void follow();
    void setStatus(const QString &status, bool isRefused = false);

    EditedSession &m_session;
    CueOwnership &m_owner;
    SuspectMarks &m_suspects;
    const AISettings &m_settings;
    const Recognition &m_sound;
    const ScriptMatching &m_script;
    int m_columns;
    bool m_isRunning = false;
    std::shared_ptr<const HeardSound> m_heard; ///< Null before. Shared with a worker.
    QString m_source;
    std::function<void()> m_forget;     ///< Of the sound, until its cues have been applied; empty then.
    std::optional<Question> m_question; ///< Absent before the sound was heard.
    ScriptTimingResult m_result;
    bool m_isCurrent = false;
    QString m_status;
    bool m_isRefused = false;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly}; ///< Last, so that it ends first.
};
