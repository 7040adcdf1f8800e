#include "app/Lintora/cues/TrackTabs.h"

#include "app/Lintora/controls/Theme.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

TrackTabs::TrackTabs(LintoraModel &model, std::function<bool()> mayLeave, QWidget *parent)
    : QTabBar(parent)
    , m_model(model)
    , m_mayLeave(std::move(mayLeave))
{
    setAccessibleName(u"语言组"_s);
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(true);
    setElideMode(Qt::ElideRight);
    setFocusPolicy(Qt::StrongFocus);
    connect(&model, &LintoraModel::tracksChanged, this, &TrackTabs::follow);
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, &TrackTabs::follow);
    connect(&model, &LintoraModel::splitOriginalChanged, this, &TrackTabs::follow);
    connect(this, &QTabBar::currentChanged, this, &TrackTabs::select);
    follow();
}

QSize TrackTabs::minimumSizeHint() const
{
    return {30 * VELTheme::step, QTabBar::minimumSizeHint().height()};
}

void TrackTabs::follow()
{
    const QScopedValueRollback following(m_isFollowing, true);
    const QList<SubtitleTrack> tracks = m_model.visibleTracks();
    while (count() > tracks.size())
        removeTab(count() - 1);
    while (count() < tracks.size())
        addTab({});
    m_tracks.clear();
    for (int tab = 0; tab < count(); ++tab) {
        const SubtitleTrack &track = tracks.at(tab);
        const QString text = u"%1 %2"_s.arg(track.label, QString::number(track.items.size()));
        // An ampersand would underline what follows it.
        const QString shown = QString(text).replace(u'&', u"&&"_s);
        if (tabText(tab) != shown) {
            setTabText(tab, shown);
            setAccessibleTabName(tab, u"%1，%2 条字幕"_s.arg(track.label, QString::number(track.items.size())));
        }
        m_tracks += track.id;
        if (track.id == m_model.selectedTrackID())
            setCurrentIndex(tab);
    }
}

void TrackTabs::select(int tab)
{
    if (m_isFollowing || tab < 0 || tab >= m_tracks.size())
        return;
    if (m_mayLeave())
        m_model.selectTrack(m_tracks.at(tab));
    else
        follow();
}
