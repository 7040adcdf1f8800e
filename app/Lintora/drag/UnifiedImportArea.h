#pragma once

#include "app/Lintora/drag/MaterialDrop.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QLabel>

/// The area that takes all material: by dropping it, by a click or a key that opens the file dialog.
class UnifiedImportArea : public QAbstractButton
{
    Q_OBJECT

public:
    enum class Form
    {
        large,  ///< Fills an empty workspace.
        oneLine ///< Above the cues.
    };

    /// Large at first. `model` must live as long as the area.
    explicit UnifiedImportArea(LintoraModel &model, QWidget *parent = nullptr);

    Form form() const { return m_form; }
    void setForm(Form form);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    void showTexts();
    void applyColours();
    void applyFonts();

    Form m_form = Form::large;
    MaterialDrop *const m_drop;
    QBoxLayout *const m_layout;
    QLabel *const m_title;
    QLabel *const m_detail;
};
