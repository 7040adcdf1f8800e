#pragma once

#include "app/Lintora/ai/WorkSheet.h"

class CheckBox;
class ChoiceBox;
class GlossarySheet;

/// Translating a track: which, into which language, by whom and with which terms; and how far it is.
class TranslateSheet : public WorkSheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    TranslateSheet(LintoraModel &model, QWidget *content);

protected:
    bool isRunning() const override { return model().translation().isRunning(); }
    bool canStart() const override;
    void showChoices() override;
    WindowState::AISettingsTab settingsTab() const override;

private:
    void addChoices();
    void addGlossary();
    void showTracks();
    void editGlossary();

    QWidget *m_content;
    ChoiceBox *m_track = nullptr;
    ChoiceBox *m_direction = nullptr;
    FieldRow *m_workerRow = nullptr;
    ChoiceBox *m_worker = nullptr;
    CheckBox *m_useGlossary = nullptr;
    QLabel *m_glossaryNote = nullptr;
    GlossarySheet *m_glossary = nullptr; ///< Made when it is needed first.
};
