#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

class QFrame;
class QLabel;
class QVBoxLayout;

/// What lies over the window's content for a while: a tool, or a question. Escape and its closing button close it, the
/// keyboard stays within it, and goes back to where it was.
class Sheet : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString undoTitle READ undoTitle NOTIFY undoChanged)
    Q_PROPERTY(QString redoTitle READ redoTitle NOTIFY undoChanged)
    Q_PROPERTY(bool editsSession READ editsSession CONSTANT)

public:
    enum class Extent
    {
        whole,  ///< As large as the window allows, and no wider than lines are good to read.
        wide,   ///< As large as the window allows.
        compact ///< As large as its content.
    };

    /// Covers `content`, which is its parent.
    Sheet(Extent extent, QWidget *content);

    QVBoxLayout *body() const { return m_body; } ///< What the sheet shows goes here.

    QLabel *addHeading(const QString &text); ///< With the closing button beside it.

    void open(QWidget *focus = nullptr); ///< `focus` is typed into first.
    void close();                        ///< Asks to be closed, as Escape does.
    void dismiss();                      ///< Closes without asking anybody.
    void returnTo(QWidget *focus);       ///< What the keyboard goes to when the sheet closes.

    // What the edit menu does while the keyboard is here. What is the sheet's own comes before the session's history,
    // which is out of reach behind a sheet that does not edit the session.

    virtual QString undoTitle() const { return {}; } ///< What undo() takes back; empty while there is nothing.
    virtual QString redoTitle() const { return {}; }
    virtual bool editsSession() const { return false; }

public Q_SLOTS:
    virtual void undo() {}
    virtual void redo() {}

Q_SIGNALS:
    void closeRequested(); ///< Who opened the sheet dismisses it.
    void undoChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeFrame();

    Extent m_extent;
    QFrame *m_frame;
    QVBoxLayout *m_body;
    QList<QPointer<QWidget>> m_before; ///< What had the focus before, and what that lay in.
};
