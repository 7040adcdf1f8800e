#pragma once

#include "app/Lintora/ai/ScriptCueRows.h"
#include "app/model/LintoraModel.h"

#include <QWidget>

class CheckBox;
class ElidedLabel;
class QListView;
class QPushButton;
class SpeechForm;
class ValueField;
class WorkView;

/// Making subtitles of a script that stands elsewhere: what is heard and by whom, how far that is, and then what came
/// of it, to be looked at before it is applied.
///
/// Everything is the model's: closing loses nothing, and the work goes on.
class ScriptSpeechView : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit ScriptSpeechView(LintoraModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *makeRows();
    QWidget *makeButtons();
    void follow();
    void followRows();
    void followStatus();
    void takeKeyboard();

    LintoraModel &m_model;
    ScriptSpeech &m_speech;
    ScriptCueRows m_rows;
    bool m_isSettingUp = true; ///< Whether what is heard is shown, instead of what came of it.
    SpeechForm *m_form;
    ValueField *m_columns;
    WorkView *m_work;
    QWidget *m_results;
    CheckBox *m_onlyUnsure;
    QListView *m_list;
    ElidedLabel *m_status;
    QPushButton *m_settings;
    QPushButton *m_turn; ///< Between what is heard and what came of it.
    QPushButton *m_start;
    QPushButton *m_apply;
};
