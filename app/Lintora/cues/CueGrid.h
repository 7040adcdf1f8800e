#pragma once

#include "app/Lintora/cues/CueFilter.h"
#include "app/Lintora/cues/CueTextEditor.h"

#include <QHash>
#include <QPointer>
#include <QTableView>

class CueTextDelegate;

/// The cues of the selected track in rows, edited in place: which are shown, which is the current one, and what becomes
/// of the text that is being typed.
class CueGrid : public QTableView
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit CueGrid(LintoraModel &model, QWidget *parent = nullptr);
    ~CueGrid() override;

    CueTableModel &cues() { return m_cues; }
    const QString &filter() const { return m_filter.text(); }
    void setFilter(const QString &text); ///< Shows only cues that hold it; all when empty.
    bool showsOnlyWarnings() const { return m_filter.onlyWarnings(); }
    void setOnlyWarnings(bool only); ///< Shows only cues that should be looked at again.
    int shownCues() const { return m_filter.rowCount(); }

    std::optional<int> currentCue() const; ///< Its position in the track.
    QList<qsizetype> selectedCues() const; ///< Their positions, ascending.
    void goTo(qsizetype cue);              ///< Makes it the current one, and the only one selected.
    void takeKeyboard();                   ///< Goes to a cue, if there is one and none is current.
    void editText(qsizetype cue);          ///< Goes there and opens the editor.
    bool isEditing() const { return m_editor || state() == EditingState; }

    /// Ends editing and keeps what was typed. False when that was refused; the editor then stays open.
    bool commitEdit();

Q_SIGNALS:
    void currentCueChanged();
    void shownCuesChanged(); ///< Their number, or what decides on them.

protected:
    LintoraModel &lintoraModel() { return m_model; }
    CueFilter &filtered() { return m_filter; }
    CueTextDelegate &textDelegate() { return *m_textDelegate; }
    CueTextEditor *textEditor() { return m_editor; } ///< While a text is edited; else null.
    void closeText();

    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyboardSearch(const QString &text) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last) override;
    void reset() override;
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    QModelIndex indexOf(qsizetype cue, int column) const;
    void select(const QModelIndex &index);
    void open(const QModelIndex &cell);
    void goOn(const CueTextEditor &editor);
    void followRowCount();
    void rescueTyped();
    void keepEditorOnItsCue(const QList<Subtitle> &items);
    void restorePlace();
    void abandon(CueTextEditor &editor);

    LintoraModel &m_model;
    CueTableModel m_cues;
    CueFilter m_filter;
    CueTextDelegate *m_textDelegate;
    QPointer<CueTextEditor> m_editor; ///< While a text is edited.
    QHash<QUuid, int> m_places;       ///< The cue that was current last, by track.
    qsizetype m_digits = 0;           ///< Of the highest number that the first column has room for.
};
