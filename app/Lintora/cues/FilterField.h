#pragma once

#include "app/Lintora/controls/LineEdit.h"

/// Where it is typed which cues are shown. Down and Return go on to them, Escape shows all of them again; none of that
/// while an input method composes.
class FilterField : public LineEdit
{
    Q_OBJECT

public:
    explicit FilterField(QWidget *parent = nullptr);

public Q_SLOTS:
    void findNext() { Q_EMIT nextRequested(); } // As the edit menu calls them.
    void findPrevious() { Q_EMIT previousRequested(); }

Q_SIGNALS:
    void left(); ///< The keyboard is to go on to the cues.
    void nextRequested();
    void previousRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    bool m_isComposing = false;
};
