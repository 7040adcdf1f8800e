// What the window has open.

#include "app/model/LintoraModel.h"

void LintoraModel::toggleFloating()
{
    setPinned(!m_pinned);
}

void LintoraModel::setPinned(bool pinned)
{
    m_preferences.setFloatingPinned(pinned);
    publish(m_pinned, pinned, &LintoraModel::pinnedChanged);
}

void LintoraModel::setFCPImportVisible(bool visible)
{
    publish(m_fcpImportVisible, visible, &LintoraModel::fcpImportVisibleChanged);
}

void LintoraModel::setSettingsVisible(bool visible)
{
    publish(m_settingsVisible, visible, &LintoraModel::settingsVisibleChanged);
}

void LintoraModel::setCleanupSettingsVisible(bool visible)
{
    publish(m_cleanupSettingsVisible, visible, &LintoraModel::cleanupSettingsVisibleChanged);
}

void LintoraModel::setFindReplaceVisible(bool visible)
{
    publish(m_findReplaceVisible, visible && !aiBusy(), &LintoraModel::findReplaceVisibleChanged);
}

void LintoraModel::setScriptMatchPresented(bool presented)
{
    publish(m_scriptMatchPresented, presented, &LintoraModel::scriptMatchPresentedChanged);
}
