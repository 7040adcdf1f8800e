#pragma once

#include "app/model/LintoraModel.h"

#include <QTabBar>

/// A tab for each language group, with its number of cues.
class TrackTabs : public QTabBar
{
    Q_OBJECT

public:
    /// `model` must live as long as this. Before another track is selected `mayLeave` is asked.
    TrackTabs(LintoraModel &model, std::function<bool()> mayLeave, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override; ///< Tabs that find no room can be scrolled to.

private:
    void follow();
    void select(int tab);

    LintoraModel &m_model;
    std::function<bool()> m_mayLeave;
    QList<QUuid> m_tracks; ///< Of the tabs.
    bool m_isFollowing = false;
};
