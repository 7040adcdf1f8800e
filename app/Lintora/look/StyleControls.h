#pragma once

#include "app/Lintora/look/OptionsForm.h"

class ChoiceBox;

/// How titles look: font, colours, stroke, shadow, place.
class StyleControls : public OptionsForm
{
    Q_OBJECT

public:
    explicit StyleControls(LintoraModel &model, QWidget *parent = nullptr);

    QWidget *fontButton() const;

Q_SIGNALS:
    void fontRequested(); ///< The person wants to look for another font.

private:
    void addFont();
    void addSize();
    void addStroke();
    void addShadow();
    void followFaces(const Options &options);

    ChoiceBox *m_font = nullptr;
    ChoiceBox *m_face = nullptr;
};
