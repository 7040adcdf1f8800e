#pragma once

#include <QComboBox>

/// One of several, in the theme's colours. The wheel is left to whatever scrolls.
class ChoiceBox : public QComboBox
{
    Q_OBJECT

public:
    /// `name` is what it is called.
    explicit ChoiceBox(const QString &name, QWidget *parent = nullptr);

    /// Asks for another choice by the signal, instead of listing what there is.
    void setListedElsewhere(bool elsewhere) { m_isListedElsewhere = elsewhere; }

    void showPopup() override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void listRequested();

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    bool m_isListedElsewhere = false;
};
