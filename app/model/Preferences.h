#pragma once

#include "core/text/checks/CheckLimits.h"

#include <QSettings>

#include <memory>

/// What the program remembers between runs beside the session, under the keys of the user defaults.
///
/// A value of another type than it should have counts as absent. Written values reach the file by themselves.
class Preferences
{
public:
    /// Keeps in `settings`, which must not be null.
    explicit Preferences(std::shared_ptr<QSettings> settings);

    QStringList fillerWords() const; ///< The default list when absent. May be empty.

    /// Keeps the list before it returns. @throws PlatformError when it cannot be written; the old one then stays
    void setFillerWords(const QStringList &words);

    bool floatingPinned() const; ///< True when absent.
    void setFloatingPinned(bool pinned);

    bool expandedActionsLayout() const; ///< Whether the window was enlarged once for its newer layout.
    void setExpandedActionsLayout(bool done);

    bool inspectorShown() const; ///< True when absent.
    void setInspectorShown(bool shown);

    bool stripShown() const; ///< Whether the timing strip is unfolded. False when absent.
    void setStripShown(bool shown);

    int stripHeight() const; ///< Of the timing strip, in points; 0 when absent.
    void setStripHeight(int points);

    QString appearance() const; ///< "light" or "dark", as it was chosen; empty when absent: the system's.
    void setAppearance(const QString &appearance);

    QStringList favoriteFonts() const; ///< Families, in the order in which they became favourites.
    void setFavoriteFonts(const QStringList &families);

    QStringList recentFonts() const; ///< Families, the one used last first.
    void setRecentFonts(const QStringList &families);

    CheckLimits checkLimits() const; ///< Those of Chinese when absent.
    void setCheckLimits(const CheckLimits &limits);

    QByteArray windowFrame() const; ///< As the window saved it; empty when absent.
    void setWindowFrame(const QByteArray &frame);

private:
    std::shared_ptr<QSettings> m_settings;
};
