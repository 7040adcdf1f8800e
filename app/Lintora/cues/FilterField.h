#pragma once

#include <QLineEdit>

/// Where it is typed which cues are shown. Down and Return go on to them, Escape shows all of them again; none of that
/// while an input method composes.
class FilterField : public QLineEdit
{
    Q_OBJECT

public:
    explicit FilterField(QWidget *parent = nullptr);

Q_SIGNALS:
    void left(); ///< The keyboard is to go on to the cues.

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    bool m_isComposing = false;
};
    void dragEnterEvent(QDragEnterEvent *event) override; ///< Files are the window's.
