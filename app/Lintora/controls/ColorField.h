#pragma once

#include "app/Lintora/controls/FieldRow.h"

#include <QAbstractButton>
#include <QColor>
#include <QColorDialog>
#include <QPointer>

class Slider;
class ValueEdit;

/// A button that shows a colour, with what shines through it.
class ColorSwatch : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ColorSwatch(const QString &name, QWidget *parent = nullptr);

    void setColor(const QColor &color);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};

/// A colour as a title document writes it: chosen from the system's dialog, or typed, and how opaque it is.
class ColorField : public FieldRow
{
    Q_OBJECT

public:
    explicit ColorField(const QString &name, QWidget *parent = nullptr);

    /// Text that is no colour is told below, and shown as `otherwise`.
    void setText(const QString &text, const QString &otherwise);

Q_SIGNALS:
    void edited(const QString &text);    ///< By the person.
    void previewed(const QString &text); ///< A colour that the dialog shows and that is not chosen yet.
    void previewEnded();                 ///< Nothing came of it.
    void gestureBegan();
    void gestureEnded();

private:
    void makeOpacity(const QString &name);
    void setColor(const QColor &color);
    void edit(const QColor &color);
    void choose();
    void followSentences();

    QString m_text;
    QColor m_color = Qt::white;
    bool m_isReadable = true;
    ColorSwatch *m_swatch;
    ValueEdit *m_code;
    Slider *m_slider;
    ValueEdit *m_opacity;
    QPointer<QColorDialog> m_dialog;
};
