#pragma once

#include "app/model/Imports.h"

#include <QObject>

/// The project that was imported last: what titles are matched to and written into, and the titles that stand in it.
/// Lasts for the run.
class KeptProject : public QObject
{
    Q_OBJECT

public:
    KeptProject() = default;

    /// What exports go into; absent until one is imported.
    const std::optional<FCPProject> &project() const { return m_project; }

    /// Rate, size, font size and name that match the timeline imported last; absent until one is imported.
    const std::optional<Options> &settings() const { return m_settings; }

    /// The titles and captions that stand in it, a track for each role and lane.
    const QList<SubtitleTrack> &titles() const { return m_titles; }

    /// How many cues of `titles` are offered to be read; 0 while they are not.
    qsizetype offered() const { return m_offered; }
    void withdraw(); ///< What is said next is about something else.

    void take(const Imports::ImportedTimeline &timeline); ///< What is not in it stays as it was.
    void offer();                                         ///< Its titles, if there are some.
    void forget();                                        ///< It was kept for another session.
    void release();                                       ///< Nothing goes into it any more.

Q_SIGNALS:
    void projectChanged();
    void settingsChanged();
    void offeredChanged();

private:
    void setOffered(qsizetype cues);

    std::optional<FCPProject> m_project;
    std::optional<Options> m_settings;
    QList<SubtitleTrack> m_titles;
    qsizetype m_offered = 0;
};
