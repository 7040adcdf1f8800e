#pragma once

#include <QComboBox>

/// One of several, in the theme's colours. The wheel is left to whatever scrolls.
class ChoiceBox : public QComboBox
{
    Q_OBJECT

public:
    /// `name` is what it is called.
    explicit ChoiceBox(const QString &name, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};
