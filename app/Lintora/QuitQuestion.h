#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class QLabel;
class QPushButton;

/// Asks whether the program is to end although the session cannot be saved, or work is under way. Opens and closes by
/// itself.
class QuitQuestion : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    QuitQuestion(LintoraModel &model, QWidget *content);

private:
    void follow();

    LintoraModel &m_model;
    QLabel *m_title;
    QLabel *m_reason;
    QLabel *m_note;
    QPushButton *m_cancel;
    QPushButton *m_export;
};
