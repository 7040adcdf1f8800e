#pragma once

#include "app/Lintora/look/OptionsForm.h"

class ChoiceBox;
class QPushButton;

/// What document titles are written into: the frame, its rate, where time begins, its name, the titles' role.
class DocumentControls : public OptionsForm
{
    Q_OBJECT

public:
    explicit DocumentControls(LintoraModel &model, QWidget *parent = nullptr);

private:
    void addProject();
    void addFrameSize();
    void addFrameRate();
    void addShift();
    void addNames();
    void followProject();
    void followFrameSize(const Options &options);
    void followFrameRate(const Options &options);
    void setFrameSize(qint64 width, qint64 height);

    FieldRow *m_project = nullptr;
    QPushButton *m_match = nullptr;
    ChoiceBox *m_size = nullptr;
    FieldRow *m_custom = nullptr;
    ValueEdit *m_width = nullptr;
    ValueEdit *m_height = nullptr;
    bool m_isCustom = false; ///< Whether the person asked to type the size.
    ChoiceBox *m_rate = nullptr;
    QList<FrameRate> m_rates; ///< In the order of the picker.
};
