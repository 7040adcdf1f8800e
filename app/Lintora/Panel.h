#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class AISettingsSheet;
class CleanupWorkspace;
class CueTable;
class CueToolWorkspace;
class FindReplaceWorkspace;
class Inspector;
class KeysSheet;
class QuestionSheet;
class QBoxLayout;
class QVBoxLayout;
class RepairWorkspace;
class TitleWritingSheet;
class ReviewSheet;
class ScriptMatchWorkspace;
class Sheet;
class SoundDesk;
class SpeechSheet;
class StyleWorkspace;
class TableHeading;
class TimeShiftSheet;
class VersionsWorkspace;
class TranslateSheet;
class UnifiedImportArea;

/// The content of the window: everything a person sees of the model, and does to it. It connects; what the parts do is
/// their own.
class LintoraPanel : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as the panel.
    explicit LintoraPanel(LintoraModel &model, QWidget *parent = nullptr);
    ~LintoraPanel() override;

    CueTable &table() { return *m_table; }

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void dress();
    QWidget *makeWorkspace();
    void followCues();
    void giveKeyboard(QWidget *widget);
    void returnKeyboard();
    void followSheets();
    void foldInspector();
    void showStyle();
    void showFCPImport(bool visible);
    void bringCue(qsizetype cue);
    void showCue(qsizetype cue);
    void followTools();
    void showTool(CueToolWorkspace *&sheet, CueTools::Tool tool);
    void confirmRestore();
    void askForTimes(const QList<qsizetype> &selected);
    template <class Workspace>
    void showSheet(Workspace *&workspace, bool visible);

    LintoraModel &m_model;
    QWidget *m_stage = nullptr;       ///< All but the status line, which stays in sight beside a sheet.
    QBoxLayout *m_material = nullptr; ///< What comes in, and the project that has come.
    UnifiedImportArea *m_import = nullptr;
    QWidget *m_emptyNote = nullptr;
    QWidget *m_workspace = nullptr;
    bool m_isInUse = false;
    CueTable *m_table = nullptr;
    TableHeading *m_heading = nullptr;
    SoundDesk *m_sound = nullptr;
    Inspector *m_inspector = nullptr;
    Sheet *m_fcpImport = nullptr; ///< Made when it is needed first, as are the following.
    QuestionSheet *m_confirmation = nullptr;
    CleanupWorkspace *m_cleanup = nullptr;
    FindReplaceWorkspace *m_findReplace = nullptr;
    ScriptMatchWorkspace *m_scriptMatch = nullptr;
    CueToolWorkspace *m_breaking = nullptr;
    CueToolWorkspace *m_checking = nullptr;
    CueToolWorkspace *m_script = nullptr;
    RepairWorkspace *m_repair = nullptr;
    TitleWritingSheet *m_titleWriting = nullptr;
    TimeShiftSheet *m_times = nullptr;
    KeysSheet *m_keys = nullptr;
    VersionsWorkspace *m_versions = nullptr;
    StyleWorkspace *m_style = nullptr;
    SpeechSheet *m_speech = nullptr;
    TranslateSheet *m_translate = nullptr;
    ReviewSheet *m_review = nullptr;
    AISettingsSheet *m_aiSettings = nullptr;
};
