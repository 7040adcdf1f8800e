#pragma once

#include "app/Lintora/ai/WorkSheet.h"

class CheckBox;

/// Recognising the speech of a file or of a timeline: what, in which language, by whom; and how far it is.
class SpeechSheet : public WorkSheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    SpeechSheet(LintoraModel &model, QWidget *content);

protected:
    bool isRunning() const override { return model().recognition().isRunning(); }
    bool canStart() const override { return model().recognition().source() != Recognition::Source::none; }
    void showChoices() override;
    WindowState::AISettingsTab settingsTab() const override;

private:
    void addSource();
    void addLanguage();
    void addListener();
    void addReview();
    void showSource();
    void showListener();
    void showReview();
    void chooseListener(int row);

    ChoiceBox *m_source = nullptr;
    FieldRow *m_sourceRow = nullptr;
    CheckBox *m_leaveOut = nullptr;
    ChoiceBox *m_language = nullptr;
    ChoiceBox *m_listener = nullptr;
    FieldRow *m_listenerRow = nullptr;
    CheckBox *m_review = nullptr;
    QLabel *m_reviewNote = nullptr;
};
