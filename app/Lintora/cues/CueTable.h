#pragma once

#include "app/Lintora/cues/CueGrid.h"

class QMenu;

/// The cues of the selected track, and what is done to them by keys and from a menu.
///
/// Keys: Return edits and, in a text, goes on to that of the next cue; Tab goes on to the next cell while one is
/// edited; Escape leaves. With Command (Control elsewhere) Return inserts a cue behind, K splits, J joins with the
/// next, Backspace deletes, and with Shift too T moves times. cut(), copy(), paste() and selectAll() are what the edit
/// menu calls.
class CueTable : public CueGrid
{
    Q_OBJECT

public:
    /// `model` must live as long as the table.
    explicit CueTable(LintoraModel &model, QWidget *parent = nullptr);

public Q_SLOTS:
    void cut();
    void copy();
    void paste(); ///< Cues where they belong by their times; text over that of the current cue, in the editor.
    void selectAll() override;
    void insertCue(); ///< Behind the current one, and opens the editor on it.
    void splitCue();  ///< Where a sentence ends, near the middle.
    void joinWithNext();
    void deleteCues();
    void moveTimes(); ///< Asks for it, with the selected cues.

Q_SIGNALS:
    void timesRequested(const QList<qsizetype> &selected); ///< To be moved.

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void splitAt(CueTextEditor &editor);
    void placeCues(const QList<Subtitle> &cues);
    void addMoveMenu(QMenu &menu);
    void moveTo(const QUuid &track);
};
