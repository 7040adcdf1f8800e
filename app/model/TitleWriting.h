#pragma once

#include "app/model/BackgroundTask.h"
#include "app/model/FCPProject.h"
#include "fcp/texts/Retext.h"
#include "store/SubtitleTrack.h"

/// Putting the words of a track back into the titles of a project that they stand in. What would become of the project
/// is shown first, and only what a person wants of it is written, into a file that is asked for.
class TitleWriting : public QObject
{
    Q_OBJECT

public:
    TitleWriting() = default;

    bool isShown() const { return m_project.has_value(); }
    void show(const FCPProject &project, const SubtitleTrack &track); ///< Begins to work it out.
    void close();

    Retext::Scope scope() const { return m_scope; }
    void setScope(Retext::Scope scope);

    /// What would be done, or only listed; absent until it is worked out, or when it cannot be.
    std::optional<Retext::Receipt> receipt() const;
    const QString &status() const { return m_status; }
    bool isRefused() const { return m_isRefused; } ///< Whether the status says why it cannot be done.
    bool canWrite() const;                         ///< Whether anything would change.
    const QString &name() const { return m_name; } ///< Of the project; empty while nothing is shown.
    std::optional<QString> folder() const;         ///< Where the project's file lies; absent when it was dragged.

    void write(const QString &path); ///< What is shown, and closes.

    BackgroundTask &task() { return m_task; }
    BackgroundTask &files() { return m_files; }

    /// What has been put where it was wanted, for people.
    static QString summary(const Retext::Receipt &receipt, Retext::Scope scope);

Q_SIGNALS:
    void shownChanged();
    void changed(); ///< The receipt or the status.
    void done(const QString &message);
    void refused(const Failure &failure);

private:
    void update();
    void setStatus(const QString &status, bool isRefused);

    std::optional<FCPProject> m_project;
    QString m_name;
    SubtitleTrack m_track;
    Retext::Scope m_scope = Retext::Scope::texts;
    std::optional<Retext::Result> m_result;
    QString m_status;
    bool m_isRefused = false;
    BackgroundTask m_task{BackgroundTask::Order::newestOnly};
    BackgroundTask m_files{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
};
