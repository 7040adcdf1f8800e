#pragma once

#include "app/Lintora/ai/WorkSheet.h"

class CheckBox;
class SpeechForm;

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
    void addReview();
    void showReview();

    SpeechForm *m_speech;
    CheckBox *m_review = nullptr;
    QLabel *m_reviewNote = nullptr;
};
