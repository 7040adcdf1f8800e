#pragma once

#include <QLabel>

/// One line of text that never asks for more room than there is: what does not fit is left out in favour of an
/// ellipsis, and shown in full under the pointer.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    bool isElided() const;

    /// Where to leave something out: at the end, unless told otherwise. Names of files differ there.
    void setElideMode(Qt::TextElideMode mode);

    QString shownText() const; ///< As it is drawn.

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString onOneLine() const;

    Qt::TextElideMode m_elideMode = Qt::ElideRight;
};
