#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ElidedLabel;
class FieldRow;
class QPushButton;

/// What titles are made of: Final Cut Pro's Basic Title, in the style that is set below, or like a title of the user's
/// own.
class LookControls : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit LookControls(LintoraModel &model, QWidget *parent = nullptr);

    QWidget *chooseButton() const;

Q_SIGNALS:
    void requested(); ///< The person wants to choose a title.

private:
    void follow();

    LintoraModel &m_model;
    FieldRow *m_row;
    ElidedLabel *m_name;
    QPushButton *m_choose;
    QPushButton *m_reset;
};
