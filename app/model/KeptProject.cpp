#include "app/model/KeptProject.h"

#include <utility>

void KeptProject::take(const Imports::ImportedTimeline &timeline)
{
    m_titles = timeline.titles;
    if (timeline.project && m_project != timeline.project) {
        m_project = timeline.project;
        Q_EMIT projectChanged();
    }
    if (timeline.settings && m_settings != timeline.settings) {
        m_settings = timeline.settings;
        Q_EMIT settingsChanged();
    }
}

void KeptProject::forget()
{
    setOffered(0);
    if (std::exchange(m_project, std::nullopt))
        Q_EMIT projectChanged();
}

void KeptProject::release()
{
    forget();
    m_titles.clear();
    if (std::exchange(m_settings, std::nullopt))
        Q_EMIT settingsChanged();
}

void KeptProject::offer()
{
    qsizetype cues = 0;
    for (const SubtitleTrack &track : std::as_const(m_titles))
        cues += track.items.size();
    setOffered(cues);
}

void KeptProject::withdraw()
{
    setOffered(0);
}

void KeptProject::setOffered(qsizetype cues)
{
    if (std::exchange(m_offered, cues) != cues)
        Q_EMIT offeredChanged();
}
