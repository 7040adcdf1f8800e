#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class DragSubtitleCard;
class QAction;
class QHBoxLayout;
class QPushButton;

/// A card for each language group, to be dragged into Final Cut Pro, and the exports of the selected one; where there
/// are several, the same for all of them at once.
class CardRow : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this. Before cues leave the window `mayAct` is asked, so that what is being typed
    /// goes with them.
    CardRow(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void offerExports();
    void perform(void (LintoraModel::*action)());
    void follow();
    void addCard(DragSubtitleCard *card);

    LintoraModel &m_model;
    std::function<bool()> m_mayAct;
    QHBoxLayout *m_cards;
    QPushButton *m_exportSRT;
    QPushButton *m_exportFCPXML;
    QList<QAction *> m_ofAll; ///< The exports of all groups.
    QList<QUuid> m_tracks;    ///< Of the cards.
    QList<QWidget *> m_shown;
};
