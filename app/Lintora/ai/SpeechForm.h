#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class CheckBox;
class ChoiceBox;
class FieldRow;

/// What speech is heard, in which language, by whom. All of it is the model's, and the same wherever it is shown.
class SpeechForm : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit SpeechForm(LintoraModel &model, QWidget *parent = nullptr);

    WindowState::AISettingsTab settingsTab() const; ///< Where the one who listens is set up.
    void follow();                                  ///< Shows what the model holds now.

private:
    FieldRow *addRow(const QString &name);
    void addSource();
    void addLanguage();
    void addListener();
    void showSource();
    void showListener();
    void chooseListener(int row);

    LintoraModel &m_model;
    ChoiceBox *m_source = nullptr;
    FieldRow *m_sourceRow = nullptr;
    CheckBox *m_leaveOut = nullptr;
    ChoiceBox *m_language = nullptr;
    ChoiceBox *m_listener = nullptr;
    FieldRow *m_listenerRow = nullptr;
};
