#pragma once

#include "app/Lintora/controls/FieldRow.h"
#include "app/Lintora/controls/ValueEdit.h"

class Slider;

/// A number that is dragged or typed, with its unit.
class ValueField : public FieldRow
{
    Q_OBJECT

public:
    /// Where the slider goes from and to; the number may lie outside.
    struct Reach
    {
        double lowest = 0;
        double highest = 100;
        double step = 1;
    };

    ValueField(const ValueEdit::Kind &kind, Reach reach, QWidget *parent = nullptr);

    double value() const { return m_edit->value(); }
    void setValue(double value);
    void setReach(Reach reach);

    ValueEdit *edit() const { return m_edit; }
    Slider *slider() const { return m_slider; }

    static constexpr int editWidth = 64;
    static constexpr int unitWidth = 28;

Q_SIGNALS:
    void edited(double value); ///< By the person.
    void gestureBegan();       ///< What is edited until the other is one movement.
    void gestureEnded();

private:
    void showOnSlider();

    Reach m_reach;
    Slider *m_slider;
    ValueEdit *m_edit;
};
