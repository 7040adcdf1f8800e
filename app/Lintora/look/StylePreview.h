#pragma once

#include "app/Lintora/controls/TitleView.h"
#include "app/titles/TitleBackdrop.h"

/// The large picture by which a style is decided: the document's frame with a title in it.
class StylePreview : public TitleView
{
    Q_OBJECT

public:
    explicit StylePreview(QWidget *parent = nullptr);

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

private:
    void draw() override;
    void placeMagnified();
    void setRemark(const QString &remark);
    QString describe();

    TitleBackdrop m_backdrop;
    bool m_hasGuides = true;
    bool m_isMagnified = false;
    TitleBackdrop m_fitted; ///< The backdrop, scaled to the picture.
    QRectF m_shown;         ///< What of the picture is to be seen, in its pixels.
    QString m_remark;
};
