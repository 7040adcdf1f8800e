#pragma once

#include "app/model/LintoraModel.h"

#include <QPushButton>

/// Where recognition, translation and proofreading are done, and whether they can be: a dot and a word. Pressing it
/// opens the settings.
class EngineState : public QPushButton
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit EngineState(LintoraModel &model, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void follow();
    void drawDot();

    enum class State
    {
        ready,
        missing, ///< A model is not there, or a service is not set up.
        busy
    };

    LintoraModel &m_model;
    State m_state = State::ready;
};
