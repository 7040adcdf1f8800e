#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class ChoiceBox;
class FieldRow;
class QLabel;
class QLineEdit;
class QPushButton;

/// Moving the times of several cues together, by seconds or by frames.
class TimeShiftSheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    TimeShiftSheet(LintoraModel &model, QWidget *content);

    void present(const QList<qsizetype> &selected); ///< Positions of cues in the selected track, ascending.

private:
    enum class Scope
    {
        selected,
        track,
        everything
    };

    void listScopes();
    void follow();
    void move();
    std::optional<CueShift::Distance> distance() const;
    QList<qsizetype> indices() const; ///< In the selected track.

    LintoraModel &m_model;
    QList<qsizetype> m_selected;
    FieldRow *m_row;
    QLineEdit *m_distance;
    ChoiceBox *m_unit;
    ChoiceBox *m_scope;
    QLabel *m_example;
    QPushButton *m_move;
};
