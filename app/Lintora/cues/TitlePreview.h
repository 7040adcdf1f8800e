#pragma once

#include "fcp/Options.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <memory>

class TitleMeasure;

/// A small picture of a title as Final Cut Pro will show it: in the whole frame where it can be read so, else in the
/// part of the frame around it.
class TitlePreview : public QWidget
{
    Q_OBJECT

public:
    explicit TitlePreview(QWidget *parent = nullptr);
    ~TitlePreview() override;

    /// Drawn soon, when what is more urgent is done.
    void show(const QString &text, const Options &options);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void draw();
    Options shownPart() const;

    QString m_text;
    Options m_options;
    std::unique_ptr<TitleMeasure> m_measure; ///< Of the options; null until needed.
    QImage m_picture;
    QTimer m_drawing; ///< Runs while the picture is behind.
};
