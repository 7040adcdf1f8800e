#pragma once

#include "app/model/ai/AISettings.h"

#include <QLabel>

/// Says where speech and texts go: to the engines of this machine, and whether they are all there, or to a service.
class EngineState : public QLabel
{
    Q_OBJECT

public:
    /// `settings` must live as long as this.
    explicit EngineState(const AISettings &settings, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void follow();

    const AISettings &m_settings;
};
