#pragma once

#include "app/Lintora/controls/FieldRow.h"
#include "app/model/ai/AISettings.h"

class QLineEdit;
class QPushButton;

/// The key of a service: never readable, in memory as it is typed, in the keychain once it is saved.
class KeyField : public FieldRow
{
    Q_OBJECT

public:
    /// `settings` must live as long as this.
    KeyField(AISettings &settings, AISettings::Service service, QWidget *parent = nullptr);

private:
    void follow();
    const QString &key() const;

    AISettings &m_settings;
    AISettings::Service m_service;
    QLineEdit *m_edit;
    QPushButton *m_save;
};
