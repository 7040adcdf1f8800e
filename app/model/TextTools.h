#pragma once

#include "app/model/Preferences.h"
#include "app/model/ai/CueOwnership.h"

/// Tools that go over the words of the selected track at once: cleaning, replacing, parting languages. Each is one step
/// of the history, and says what has become of the cues.
class TextTools : public QObject
{
    Q_OBJECT

public:
    /// All must live as long as this.
    TextTools(EditedSession &session, CueOwnership &owner, Preferences &preferences);

    void setRemoveFillers(bool on);
    void setRemovePunctuation(bool on);
    void clean();
    void undoCleanup();

    /// Replaces in all cues and returns how often; absent when refused.
    std::optional<qint64> replaceKeywords(const QString &query, const QString &with);
    bool canUndoReplacement() const; ///< While the cues are as the last replacement left them.
    void undoReplacement();

    const QStringList &fillerWords() const { return m_fillerWords; }
    /// Keeps the list, as typed. @throws ConversionError "最多 100 个词，每个词不超过 60 字。", PlatformError when it
    /// cannot be kept
    void saveFillerWords(const QString &text);

    void separateLanguages();
    void restoreOriginal(); ///< Throws away the edits since the separation: ask first.

Q_SIGNALS:
    void fillerWordsChanged();
    void done(const QString &message);
    void refused(const Failure &failure); ///< Why nothing was done.

private:
    const LintoraSession &state() const { return m_session.state(); }

    EditedSession &m_session;
    CueOwnership &m_owner;
    Preferences &m_preferences;
    QStringList m_fillerWords;
    std::optional<CueRestore> m_replacement; ///< Of the last replacement.
};
