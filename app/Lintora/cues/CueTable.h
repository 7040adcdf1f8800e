#pragma once

#include "app/Lintora/cues/CueGrid.h"

#include <functional>

class QMenu;

/// The cues of the selected track, and what is done to them by keys and from a menu.
///
/// Keys: Return edits and, in a text, goes on to that of the next cue; Tab goes on to the next cell while one is
/// edited; Escape leaves. With Command (Control elsewhere) Return inserts a cue behind, K splits, J joins with the
/// next, Backspace deletes, and with Shift too T moves times. G
/// finds the next, semicolon goes to the next warning. cut(), copy(), paste() and selectAll() are what the edit
/// menu calls.
class CueTable : public CueGrid
{
    Q_OBJECT

public:
    /// `model` must live as long as the table.
    explicit CueTable(LintoraModel &model, QWidget *parent = nullptr);

    /// A key, or several, and what it does.
    struct Key
    {
        QString keys;
        QString what;
    };

    static QList<Key> keys();            ///< Those that are in no menu.
    void setSearch(const QString &text); ///< What findNext() looks for; case does not count. Kept when empty.

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
    void findNext();  ///< To the next cue in sight that holds the text, beginning anew behind the last.
    void findPrevious();
    void nextWarning(); ///< The same for a cue that should be looked at again.
    void nextSuspect(); ///< The same for one that was marked as likely invented, or guessed.

Q_SIGNALS:
    void timesRequested(const QList<qsizetype> &selected); ///< To be moved.
    void searchRequested();                                ///< It is not known what to look for.

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void splitAt(CueTextEditor &editor);
    void placeCues(const QList<Subtitle> &cues);
    void addMoveMenu(QMenu &menu);
    void moveTo(const QUuid &track);
    void find(int step);
    bool goOnTo(int step, const std::function<bool(int cue)> &isWanted);

    QString m_search;
};
