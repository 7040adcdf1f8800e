#pragma once

#include "fcp/Options.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>

class TitleMeasure;

/// A picture of a title as Final Cut Pro will show it, which follows what it is about.
///
/// It is drawn as soon as control is back in the event loop: what is dragged is followed, and what is more urgent is
/// done first.
class TitleView : public QWidget
{
    Q_OBJECT

public:
    explicit TitleView(const QString &name, QWidget *parent = nullptr);
    ~TitleView() override;

    void show(const QString &text, const Options &options);

protected:
    const QString &text() const { return m_text; }
    const Options &options() const { return m_options; }
    TitleMeasure &measure(); ///< Of the options.
    QImage &picture() { return m_picture; }

    void drawSoon() { m_drawing.start(); }
    virtual void draw() = 0; ///< Draws the picture.

    void resizeEvent(QResizeEvent *event) override;

private:
    QString m_text;
    Options m_options;
    std::unique_ptr<TitleMeasure> m_measure; ///< Null until needed.
    QImage m_picture;
    QTimer m_drawing; ///< Runs while the picture is behind.
};
