#include "app/model/Preferences.h"

#include "app/model/SettingsValues.h"
#include "core/PlatformError.h"
#include "core/text/SubtitleCleanup.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString fillerWordsKey = u"fillerWords"_s;
const QString pinnedKey = u"floatingPinned"_s;
const QString expandedKey = u"expandedActionsLayout"_s;
const QString inspectorKey = u"inspectorShown"_s;
const QString stripShownKey = u"timingStripShown"_s;
const QString stripHeightKey = u"timingStripHeight"_s;
const QString appearanceKey = u"appearance"_s;
const QString favoritesKey = u"favoriteFonts"_s;
const QString recentKey = u"recentFonts"_s;
const QString limitsKey = u"checkLimits"_s;
const QString frameKey = u"LintoraEditor"_s;

/// Brings what was set to the disk. Whether that could be done.
bool isWritten(QSettings &settings)
{
    settings.sync();
    if (settings.status() == QSettings::NoError)
        return true;
    // What once went wrong is remembered for good, also when it has gone right since: a fresh look tells.
    QSettings fresh(settings.fileName(), settings.format());
    fresh.sync();
    return fresh.status() == QSettings::NoError;
}

} // namespace

Preferences::Preferences(std::shared_ptr<QSettings> settings)
    : m_settings(std::move(settings))
{}

QStringList Preferences::fillerWords() const
{
    const QVariant value = m_settings->value(fillerWordsKey);
    // A list of one is stored as that one; an empty one as nothing that is a text.
    if (!value.isValid())
        return m_settings->contains(fillerWordsKey) ? QStringList() : SubtitleCleanup::defaultFillerWords();
    return value.canConvert<QStringList>() ? value.toStringList() : SubtitleCleanup::defaultFillerWords();
}

void Preferences::setFillerWords(const QStringList &words)
{
    const QVariant before = m_settings->value(fillerWordsKey);
    m_settings->setValue(fillerWordsKey, words);
    if (isWritten(*m_settings))
        return;
    if (before.isValid())
        m_settings->setValue(fillerWordsKey, before);
    else
        m_settings->remove(fillerWordsKey);
    throw PlatformError(u"设置未能存入“%1”，请检查磁盘空间和权限。"_s.arg(m_settings->fileName()));
}

bool Preferences::floatingPinned() const
{
    return SettingsValues::boolean(m_settings->value(pinnedKey)).value_or(true);
}

void Preferences::setFloatingPinned(bool pinned)
{
    m_settings->setValue(pinnedKey, pinned);
}

bool Preferences::expandedActionsLayout() const
{
    return SettingsValues::boolean(m_settings->value(expandedKey)).value_or(false);
}

void Preferences::setExpandedActionsLayout(bool done)
{
    m_settings->setValue(expandedKey, done);
}

bool Preferences::inspectorShown() const
{
    return SettingsValues::boolean(m_settings->value(inspectorKey)).value_or(true);
}

void Preferences::setInspectorShown(bool shown)
{
    m_settings->setValue(inspectorKey, shown);
}

bool Preferences::stripShown() const
{
    return SettingsValues::boolean(m_settings->value(stripShownKey)).value_or(false);
}

void Preferences::setStripShown(bool shown)
{
    m_settings->setValue(stripShownKey, shown);
}

int Preferences::stripHeight() const
{
    return std::max(0, m_settings->value(stripHeightKey).toInt());
}

void Preferences::setStripHeight(int points)
{
    m_settings->setValue(stripHeightKey, points);
}

QString Preferences::appearance() const
{
    return m_settings->value(appearanceKey).toString();
}

void Preferences::setAppearance(const QString &appearance)
{
    if (appearance.isEmpty())
        m_settings->remove(appearanceKey);
    else
        m_settings->setValue(appearanceKey, appearance);
}

QStringList Preferences::favoriteFonts() const
{
    return m_settings->value(favoritesKey).toStringList();
}

void Preferences::setFavoriteFonts(const QStringList &families)
{
    m_settings->setValue(favoritesKey, families);
}

QStringList Preferences::recentFonts() const
{
    return m_settings->value(recentKey).toStringList();
}

void Preferences::setRecentFonts(const QStringList &families)
{
    m_settings->setValue(recentKey, families);
}

CheckLimits Preferences::checkLimits() const
{
    try {
        return CheckLimits::read(m_settings->value(limitsKey).toByteArray());
    } catch (const PlatformError &) {
        return CheckLimits::builtIn().front(); // what cannot be read counts as absent
    }
}

void Preferences::setCheckLimits(const CheckLimits &limits)
{
    m_settings->setValue(limitsKey, limits.written());
}

QByteArray Preferences::windowFrame() const
{
    return m_settings->value(frameKey).toByteArray();
}

void Preferences::setWindowFrame(const QByteArray &frame)
{
    m_settings->setValue(frameKey, frame);
}
