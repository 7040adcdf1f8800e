#pragma once

#include "app/model/EditedSession.h"
#include "app/model/StepJournal.h"
#include "store/DraftFile.h"
#include "store/SessionFile.h"

/// Keeps a session in its draft, with its history in a journal beside it, and in a file of its own once it is shared
/// with the workflow extension.
///
/// Nothing goes into a session file before the version in it has arrived: a link opens what the extension wrote.
class SessionKeeper : public QObject
{
    Q_OBJECT

public:
    explicit SessionKeeper(const QString &draftURL, QObject *parent = nullptr);
    ~SessionKeeper() override;

    const QString &draftURL() const { return m_draftURL; }
    QString beside(const QString &name) const; ///< The path of that name in the draft's folder.
    std::optional<QString> sessionURL() const; ///< The file that is watched; absent while none is.

    /// Why the newest state is not in the draft, or not in the shared file; absent while all is well. In the platform's
    /// words.
    const std::optional<QString> &draftFailure() const { return m_draftFailure; }
    const std::optional<QString> &sessionFailure() const { return m_sessionFailure; }

    bool isDraftSaved() const { return m_draft.isSaved(); } ///< Whether the newest state is in the draft.

    /// The session that the last run left, with its history as far as it is known; `first` when there is none that can
    /// be read.
    EditHistory takeUp(const LintoraSession &first);

    void follow(const EditedSession &session); ///< Its history goes into the journal from now on.

    /// Watches that file in place of any other. Its version arrives soon, also when it is the one last seen.
    void watchSession(const QString &file);

    void announceChange();                           ///< The session has changed, and save() follows.
    void retractChange();                            ///< No saveSession() follows after all.
    void saveDraft(const LintoraSession &session);   ///< Returns at once. As the history stands.
    void saveSession(const LintoraSession &session); ///< Returns at once.
    void adopt(const LintoraSession &session);       ///< What became of the version that has just arrived.
    void refreshSession();                           ///< Delivers a new version, if there is one, before it returns.

    void flushDraft();   ///< @throws ConversionError, PlatformError when the newest session could not be saved.
    void flushSession(); ///< @throws ConversionError, PlatformError when the newest session could not be written.

Q_SIGNALS:
    void draftSaved();                             ///< The newest state is in the draft.
    void arrived(const LintoraSession &session);   ///< The extension has put this version in place.
    void overruled(const LintoraSession &session); ///< Our change has taken the place of this version, unseen.
    void failureChanged(); ///< Draft or session could not be saved, for a reason that is news, or can be again.

private:
    template <class File>
    void flush(File &file, std::optional<QString> &failure);
    void note(std::optional<QString> &failure, const std::optional<QString> &description);

    QString m_draftURL;
    std::optional<QString> m_draftFailure;
    std::optional<QString> m_sessionFailure;
    StepJournal m_journal;
    DraftFile m_draft;                      ///< Behind the journal, which it speaks to until its end.
    std::unique_ptr<SessionFile> m_session; ///< Null while none is watched.
    bool m_hasArrived = false;              ///< Whether the watched session's first version has come.
};
