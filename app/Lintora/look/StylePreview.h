#pragma once

#include "app/titles/TitleBackdrop.h"
#include "fcp/Options.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class TitleMeasure;

/// The large picture by which a style is decided: the document's frame with a title in it, as Final Cut Pro will show
/// it.
class StylePreview : public QWidget
{
    Q_OBJECT

public:
    explicit StylePreview(QWidget *parent = nullptr);
    ~StylePreview() override;

    /// Drawn as soon as control is back in the event loop: what is dragged is followed.
    void show(const QString &text, const Options &options);

    void setBackdrop(const TitleBackdrop &backdrop);
    void setGuidesVisible(bool visible);
    void setMagnified(bool magnified); ///< Shows the part of the frame around the title, three times as large.

    const TitleBackdrop &backdrop() const { return m_backdrop; }

    /// What is to be known about the picture: that the text is too wide, that a font is missing. Empty when it is as it
    /// should be.
    const QString &remark() const { return m_remark; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void remarkChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void draw();
    void placeMagnified();
    void setRemark(const QString &remark);
    QString describe();

    QString m_text;
    Options m_options;
    TitleBackdrop m_backdrop;
    bool m_hasGuides = true;
    bool m_isMagnified = false;
    std::unique_ptr<TitleMeasure> m_measure; ///< Of the options; null until needed.
    TitleBackdrop m_fitted;                  ///< The backdrop, scaled to the picture.
    QImage m_picture;
    QRectF m_shown; ///< What of the picture is to be seen, in its pixels.
    QString m_remark;
    QTimer m_drawing; ///< Runs while the picture is behind.
};
