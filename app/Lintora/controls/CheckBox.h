#pragma once

#include <QCheckBox>

/// A check box in the theme's colours.
class CheckBox : public QCheckBox
{
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// Draws the box alone, in the middle of `rectangle`, for lists that have boxes in their rows.
    static void paintBox(QPainter &painter, const QRect &rectangle, const QWidget &widget, bool isChecked,
                         bool isEnabled);

    static constexpr int boxSize = 16;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
};
