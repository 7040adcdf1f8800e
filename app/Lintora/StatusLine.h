#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ElidedLabel;
class QToolButton;
class QPushButton;
class BusyBar;

/// What has become of the last operation, and what is under way.
///
/// A failure stands in its own colour; success is quiet. What has a detail tells it under the pointer, and can be
/// copied with it, as can every failure. While long work runs, what it is doing, how far it is and a button to cancel
/// it are here.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit StatusLine(LintoraModel &model, QWidget *parent = nullptr);

    QString text() const; ///< In full, however much of it can be seen.

Q_SIGNALS:
    void keyboardFreed(); ///< A button that has the keyboard is about to go.

private:
    void update();
    QString detailedText() const; ///< What is said, and its detail.
    void copy() const;

    LintoraModel &m_model;
    ElidedLabel *m_text;
    QPushButton *m_repair;
    QPushButton *m_skip;
    QPushButton *m_titles;
    QToolButton *m_copy;
    BusyBar *m_busy;
    QPushButton *m_cancel;
};
