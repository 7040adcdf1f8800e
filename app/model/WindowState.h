#pragma once

#include "app/model/PlayCommand.h"
#include "app/model/Preferences.h"
#include "app/model/ai/CueOwnership.h"

/// What the window has open, and whether it stays in front.
class WindowState : public QObject
{
    Q_OBJECT

public:
    /// What the AI sheet is about.
    enum class AIMode
    {
        speech,
        translation,
        review
    };

    /// The pages of the settings of engines and services.
    enum class AISettingsTab
    {
        models,
        text,
        speech
    };

    /// What a script is used for.
    enum class ScriptWay
    {
        wording, ///< Correcting the cues that are there.
        timing   ///< Making cues of it.
    };

    /// Light or dark.
    enum class Appearance
    {
        system, ///< As the system has it.
        light,
        dark
    };

    WindowState(Preferences &preferences, const CueOwnership &owner);

    bool pinned() const { return m_pinned; } ///< Whether it stays in front. Kept between runs.
    void setPinned(bool pinned);
    void toggleFloating() { setPinned(!m_pinned); }

    bool inspectorShown() const { return m_inspectorShown; } ///< Whether a cue's picture is shown. Kept between runs.
    void setInspectorShown(bool shown);

    bool stripShown() const { return m_stripShown; } ///< Whether the timing strip is unfolded. Kept between runs.
    void setStripShown(bool shown);

    Appearance appearance() const { return m_appearance; } ///< Kept between runs.
    void setAppearance(Appearance appearance);

    bool fcpImportVisible() const { return m_fcpImportVisible; }
    bool settingsVisible() const { return m_settingsVisible; } ///< The titles' look.
    bool cleanupSettingsVisible() const { return m_cleanupSettingsVisible; }
    bool findReplaceVisible() const { return m_findReplaceVisible; }
    bool scriptMatchPresented() const { return m_scriptMatchPresented; }
    ScriptWay scriptWay() const { return m_scriptWay; } ///< The last one, while it is not presented.
    bool aiPresented() const { return m_aiPresented; }
    AIMode aiMode() const { return m_aiMode; } ///< The last one, while it is not presented.
    bool aiSettingsPresented() const { return m_aiSettingsPresented; }
    AISettingsTab aiSettingsTab() const { return m_aiSettingsTab; } ///< The last one, while they are not presented.
    void setFCPImportVisible(bool visible);
    void setSettingsVisible(bool visible);
    void setCleanupSettingsVisible(bool visible);
    void setFindReplaceVisible(bool visible); ///< Not opened while long work owns the cues, which closes it.
    void setScriptMatchPresented(bool presented);
    void setScriptWay(ScriptWay way);
    void showAI(AIMode mode);
    void setAIPresented(bool presented);
    void setAISettingsPresented(bool presented);
    void setAISettingsTab(AISettingsTab tab);

    /// An entry of the menus that has a key.
    struct MenuKey
    {
        QString menu;
        QString title;
        QString keys; ///< As the system writes them.
    };

    void play(PlayCommand command) { Q_EMIT playRequested(command); } ///< Asks for it, while the strip is shown.

    bool keysVisible() const { return m_keysVisible; } ///< The page that lists what every key does.
    void setKeysVisible(bool visible);

    bool subtitleDragInProgress = false;                ///< Set by the card that is dragged.
    std::function<void()> raisePinnedWindow = nullptr;  ///< Set by the owner of the window.
    std::function<QList<MenuKey>()> menuKeys = nullptr; ///< In the menus' order. Set by their owner.

    /// Brings what is being typed into the cues; false when that is refused. Set by the panel.
    std::function<bool()> keepTyped = nullptr;

Q_SIGNALS:
    void pinnedChanged();
    void inspectorShownChanged();
    void stripShownChanged();
    void playRequested(PlayCommand command);
    void appearanceChanged();
    void fcpImportVisibleChanged();
    void settingsVisibleChanged();
    void cleanupSettingsVisibleChanged();
    void findReplaceVisibleChanged();
    void scriptMatchPresentedChanged(); ///< Or the way.
    void aiPresentedChanged();          ///< Or the mode.
    void aiSettingsPresentedChanged();
    void aiSettingsTabChanged();
    void keysVisibleChanged();

private:
    void set(bool &field, bool value, void (WindowState::*changed)());

    Preferences &m_preferences;
    const CueOwnership &m_owner;
    bool m_pinned;
    bool m_inspectorShown;
    bool m_stripShown;
    Appearance m_appearance;
    bool m_fcpImportVisible = false;
    bool m_settingsVisible = false;
    bool m_cleanupSettingsVisible = false;
    bool m_findReplaceVisible = false;
    bool m_scriptMatchPresented = false;
    ScriptWay m_scriptWay = ScriptWay::wording;
    bool m_aiPresented = false;
    AIMode m_aiMode = AIMode::speech;
    bool m_aiSettingsPresented = false;
    bool m_keysVisible = false;
    AISettingsTab m_aiSettingsTab = AISettingsTab::models;
};
