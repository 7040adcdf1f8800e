#pragma once

#include "app/Lintora/drag/MaterialDrop.h"

#include <QLabel>
#include <QWidget>

/// An area that takes material by dropping only, for places that ask for some of a kind.
class FileDropArea : public QWidget
{
    Q_OBJECT

public:
    enum class Form
    {
        large,
        compact ///< One line.
    };

    /// An empty `prompt` gives the text for any material. `model` must live as long as the area.
    explicit FileDropArea(LintoraModel &model, Form form, const QString &prompt = {}, QWidget *parent = nullptr);

    QString text() const { return m_label->text(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showText();

    const Form m_form;
    const QString m_prompt;
    MaterialDrop *const m_drop;
    QLabel *const m_label;
};
