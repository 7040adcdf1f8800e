#pragma once

#include "app/Lintora/cues/CueFilter.h"
#include "app/Lintora/cues/CueTextEditor.h"

#include <QHash>
#include <QPointer>
#include <QTableView>

class CueTextDelegate;

/// The cues of the selected track, edited in place.
///
/// Keys: Return edits, Escape leaves, and with Command (Control elsewhere) Return inserts a cue behind, K splits, J
/// joins with the next, Backspace deletes. cut(), copy(), paste() and selectAll() are what the edit menu calls.
class CueTable : public QTableView
{
    Q_OBJECT

public:
    /// `model` must live as long as the table.
    explicit CueTable(LintoraModel &model, QWidget *parent = nullptr);
    ~CueTable() override;

    CueTableModel &cues() { return m_cues; }
    const QString &filter() const { return m_filter.text(); }
    void setFilter(const QString &text); ///< Shows only cues that hold it; all when empty.
    int shownCues() const { return m_filter.rowCount(); }

    std::optional<int> currentCue() const; ///< Its position in the track.
    QList<qsizetype> selectedCues() const; ///< Their positions, ascending.
    void goTo(qsizetype cue);              ///< Makes it the current one, and the only one selected.
    void takeKeyboard();                   ///< Goes to a cue, if there is one and none is current.
    void editText(qsizetype cue);          ///< Goes there and opens the editor.
    bool isEditing() const { return m_editor || state() == EditingState; }

    /// Ends editing and keeps what was typed. False when that was refused; the editor then stays open.
    bool commitEdit();

public Q_SLOTS:
    void cut();
    void copy();
    void paste(); ///< Cues where they belong by their times; text over that of the current cue, in the editor.
    void selectAll() override;
    void insertCue(); ///< Behind the current one, and opens the editor on it.
    void splitCue();  ///< Where a sentence ends, near the middle.
    void joinWithNext();
    void deleteCues();

Q_SIGNALS:
    void currentCueChanged();

protected:
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyboardSearch(const QString &text) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last) override;
    void reset() override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    QModelIndex indexOf(qsizetype cue, int column) const;
    void select(const QModelIndex &index);
    void followRowCount();
    void closeText();
    void rescueTyped();
    void keepEditorOnItsCue(const QList<Subtitle> &items);
    void restorePlace();
    void abandon(CueTextEditor &editor);
    void splitAt(CueTextEditor &editor);
    void addMoveMenu(QMenu &menu);
    void moveTo(const QUuid &track);
    void placeCues(const QList<Subtitle> &cues);

    LintoraModel &m_model;
    CueTableModel m_cues;
    CueFilter m_filter;
    CueTextDelegate *m_textDelegate;
    QPointer<CueTextEditor> m_editor; ///< While a text is edited.
    QHash<QUuid, int> m_places;       ///< The cue that was current last, by track.
    qsizetype m_digits = 0;           ///< Of the highest number that the first column has room for.
};
