#pragma once

#include "app/model/LintoraModel.h"

#include <QAbstractButton>
#include <QPixmap>

/// A card that is dragged onto Final Cut Pro's timeline, where the cues of its track become titles, or those of all
/// shown tracks, each on its lane.
///
/// What it carries can also be copied, by ⌘C or from its menu, which Return and Space open. A button to assistive
/// programs; the mouse drags it instead of pressing it.
class DragSubtitleCard : public QAbstractButton
{
    Q_OBJECT

public:
    /// Absent `trackID`: always the selected track. `model` must live as long as the card.
    DragSubtitleCard(LintoraModel &model, std::optional<QUuid> trackID, QWidget *parent = nullptr);

    struct AllTracks
    {};
    DragSubtitleCard(LintoraModel &model, AllTracks all, QWidget *parent = nullptr);

    QString caption() const { return m_caption; } ///< What the card shows where there is room.
    QString shownCaption(int width) const;        ///< What of it is shown within `width` points.

    /// What follows the pointer: the card's size, the number of its cues.
    QPixmap dragImage() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    /// Puts the clip document onto the clipboard, under the types of a drag.
    void copy();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool event(QEvent *event) override;

private:
    DragSubtitleCard(LintoraModel &model, std::optional<QUuid> trackID, bool carriesAll, QWidget *parent);
    const SubtitleTrack *track() const;
    std::optional<QString> label() const; ///< Of what is carried; absent when that was closed.
    qsizetype cueCount() const;
    std::optional<QByteArray> payload();
    QString help() const;
    void showTrack();
    void showMenu(const QPoint &at);
    void drag();

    LintoraModel &m_model;
    const std::optional<QUuid> m_trackID;
    const bool m_carriesAll;
    QString m_caption;
    QString m_label;           ///< Of what is carried.
    QPoint m_pressed;          ///< Where the button went down, in the card.
    bool m_dragStarted = true; ///< Since the button went down.
};
