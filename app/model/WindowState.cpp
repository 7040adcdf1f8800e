#include "app/model/WindowState.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString light = u"light"_s;
const QString dark = u"dark"_s;

WindowState::Appearance appearanceOf(const QString &kept)
{
    return kept == light  ? WindowState::Appearance::light
           : kept == dark ? WindowState::Appearance::dark
                          : WindowState::Appearance::system;
}

} // namespace

WindowState::WindowState(Preferences &preferences, const CueOwnership &owner)
    : m_preferences(preferences)
    , m_owner(owner)
    , m_pinned(preferences.floatingPinned())
    , m_inspectorShown(preferences.inspectorShown())
    , m_stripShown(preferences.stripShown())
    , m_appearance(appearanceOf(preferences.appearance()))
{
    connect(&owner, &CueOwnership::busyChanged, this, [this] {
        if (m_owner.isBusy())
            setFindReplaceVisible(false);
    });
}

void WindowState::set(bool &field, bool value, void (WindowState::*changed)())
{
    if (std::exchange(field, value) != value)
        Q_EMIT(this->*changed)();
}

void WindowState::setPinned(bool pinned)
{
    m_preferences.setFloatingPinned(pinned);
    set(m_pinned, pinned, &WindowState::pinnedChanged);
}

void WindowState::setInspectorShown(bool shown)
{
    m_preferences.setInspectorShown(shown);
    set(m_inspectorShown, shown, &WindowState::inspectorShownChanged);
}

void WindowState::setStripShown(bool shown)
{
    m_preferences.setStripShown(shown);
    set(m_stripShown, shown, &WindowState::stripShownChanged);
}

void WindowState::setAppearance(Appearance appearance)
{
    m_preferences.setAppearance(appearance == Appearance::light  ? light
                                : appearance == Appearance::dark ? dark
                                                                 : QString());
    if (std::exchange(m_appearance, appearance) != appearance)
        Q_EMIT appearanceChanged();
}

void WindowState::setFCPImportVisible(bool visible)
{
    set(m_fcpImportVisible, visible, &WindowState::fcpImportVisibleChanged);
}

void WindowState::setSettingsVisible(bool visible)
{
    set(m_settingsVisible, visible, &WindowState::settingsVisibleChanged);
}

void WindowState::setCleanupSettingsVisible(bool visible)
{
    set(m_cleanupSettingsVisible, visible, &WindowState::cleanupSettingsVisibleChanged);
}

void WindowState::setFindReplaceVisible(bool visible)
{
    set(m_findReplaceVisible, visible && !m_owner.isBusy(), &WindowState::findReplaceVisibleChanged);
}

void WindowState::setScriptMatchPresented(bool presented)
{
    set(m_scriptMatchPresented, presented, &WindowState::scriptMatchPresentedChanged);
}

void WindowState::setScriptWay(ScriptWay way)
{
    if (std::exchange(m_scriptWay, way) != way)
        Q_EMIT scriptMatchPresentedChanged();
}

void WindowState::showAI(AIMode mode)
{
    const bool isOther = std::exchange(m_aiMode, mode) != mode;
    if (!std::exchange(m_aiPresented, true) || isOther)
        Q_EMIT aiPresentedChanged();
}

void WindowState::setAIPresented(bool presented)
{
    set(m_aiPresented, presented, &WindowState::aiPresentedChanged);
}

void WindowState::setAISettingsPresented(bool presented)
{
    set(m_aiSettingsPresented, presented, &WindowState::aiSettingsPresentedChanged);
}

void WindowState::setKeysVisible(bool visible)
{
    set(m_keysVisible, visible, &WindowState::keysVisibleChanged);
}

void WindowState::setAISettingsTab(AISettingsTab tab)
{
    if (std::exchange(m_aiSettingsTab, tab) != tab)
        Q_EMIT aiSettingsTabChanged();
}
