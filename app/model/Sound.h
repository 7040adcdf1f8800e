#pragma once

#include "app/model/BackgroundTask.h"
#include "core/sound/Waveform.h"
#include "fcp/audio/FCPAudioPlan.h"

#include <QString>

#include <variant>

class LocalAIJob;
class Recognition;
class Workspace;

/// What belongs to the cues to be heard and seen: the recording that was chosen last, or the timeline of Final Cut Pro,
/// whichever is the source of recognition. Cues' times are times of it.
///
/// It is read, and a timeline's sound rendered, once somebody shows it.
class Sound : public QObject
{
    Q_OBJECT

public:
    /// `source` must live as long as this.
    explicit Sound(const Recognition &source);
    ~Sound() override;

    bool hasMedium() const; ///< Whether there is something to be heard.
    QString title() const;  ///< Its display name; empty for none.

    /// The path of what can be played: the recording itself, or the timeline's sound once it is rendered; empty until
    /// then, and where there is none.
    const QString &file() const { return m_file; }

    /// Somebody shows the sound, or no longer does. Reading begins with the first and goes on to its end; a recording
    /// that has changed since is read again.
    void setShown(bool isShown);
    bool isShown() const { return m_isShown; }

    /// What is known of its shape so far.
    const Waveform &waveform() const { return m_waveform; }
    bool isReading() const { return m_task.isRunning(); }
    std::optional<double> share() const; ///< Of the reading that is done, 0 to 1; absent where nobody knows.

    /// What is wrong with the sound: why it cannot be heard, or what of it is missing. In the person's words; empty
    /// while nothing is.
    const QString &trouble() const { return m_trouble; }
    void readAgain(); ///< Tries again. A recording that is missing is read by itself once it is back.

    BackgroundTask &task() { return m_task; }

Q_SIGNALS:
    void mediumChanged(); ///< Another one, or none: file, waveform and trouble are new too.
    void fileChanged();
    void waveformChanged(); ///< There is more of it, or another one.
    void readingChanged();  ///< It began or ended, or how far it is.
    void troubleChanged();

private:
    using Medium = std::variant<std::monostate, QString, FCPAudioPlan>; ///< None, a recording's path, a timeline.
    using Rendered = std::shared_ptr<const Workspace>;                  ///< Where a timeline's sound lies.

    /// A waveform on its way from the worker, and what has become of all.
    class Newest;
    struct Outcome
    {
        Waveform waveform;
        QString notice;
        QString file;
        Rendered rendered; ///< Null for a recording.
    };

    static Outcome hear(const Medium &medium, LocalAIJob &job, const ProgressReport &report,
                        const std::shared_ptr<Newest> &newest);

    Medium medium() const;
    void follow();
    void read();
    void refuse(const Failure &failure);
    void takeNewest();
    void take(const Outcome &outcome);
    void setFile(const QString &file);
    void setTrouble(const QString &trouble);

    const Recognition &m_source;
    Medium m_medium;
    bool m_isShown = false;
    QString m_file;
    Rendered m_rendered;
    Waveform m_waveform;
    std::shared_ptr<Newest> m_newest; ///< Shared with the worker; null before it was ever read.
    QString m_trouble;
    BackgroundTask m_return{BackgroundTask::Order::newestOnly}; ///< Waits for a missing recording.
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};   ///< Last, so that it ends first.
};
