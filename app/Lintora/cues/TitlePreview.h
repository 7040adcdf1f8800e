#pragma once

#include "app/Lintora/controls/TitleView.h"

/// A small picture of a title: in the whole frame where it can be read so or lies over a picture, else in the part of
/// the frame around it.
class TitlePreview : public TitleView
{
    Q_OBJECT

public:
    explicit TitlePreview(QWidget *parent = nullptr);

    /// What the title lies over; null: black.
    void setBackdrop(const QImage &picture);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void draw() override;
    Options shownPart();

    QImage m_backdrop;
};
