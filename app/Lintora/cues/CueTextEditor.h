#pragma once

#include "app/Lintora/controls/TextEdit.h"

#include <QPersistentModelIndex>

/// The field in which the text of a cue is edited in its place.
///
/// Return, Tab and Escape end the editing; Shift or Option with Return breaks the line. No key is a command while an
/// input method composes.
class CueTextEditor : public TextEdit
{
    Q_OBJECT

public:
    explicit CueTextEditor(const QModelIndex &cue, QWidget *parent);

    const QPersistentModelIndex &cue() const { return m_cue; } ///< Invalid once the cue is gone.

    /// What the cue holds. Takes the place of the field's text unless that was typed.
    void setStored(const QString &text);

    /// Whether something was typed that the cue does not hold.
    bool isModified() const { return toPlainText() != m_stored; }

    void stop() { m_isOver = true; } ///< Editing is over: that the focus leaves is no news any more.

    QSize sizeHint() const override; ///< As high as the text needs.

public Q_SLOTS:
    // At the cursor, as the edit menu calls them.
    void splitCue() { Q_EMIT splitRequested(); }
    void joinWithNext() { Q_EMIT joinRequested(); }
    void insertCue() { Q_EMIT insertRequested(); }

Q_SIGNALS:
    void accepted();           ///< Return.
    void tabbed(bool forward); ///< Tab, or the key that goes back.
    void abandoned();          ///< Escape.
    void splitRequested();
    void joinRequested();
    void insertRequested();
    void focusLeft(); ///< To another control of the window.
    void windowLeft();
    void rewrapped(); ///< Its width is another one, and so may be the height that it needs.

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    bool event(QEvent *event) override;

private:
    void showScrollBar();
    bool isComposing() const { return m_isComposing; }

    QPersistentModelIndex m_cue;
    QString m_stored;
    bool m_isComposing = false;
    bool m_isOver = false;
};
