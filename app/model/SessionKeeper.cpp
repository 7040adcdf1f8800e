#include "app/model/SessionKeeper.h"

#include "app/model/SessionTracks.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QString journalBeside(const QString &draft)
{
    const QFileInfo file(draft);
    return file.path() + u'/' + file.completeBaseName() + u".steps"_s;
}

} // namespace

SessionKeeper::SessionKeeper(const QString &draftURL, QObject *parent)
    : QObject(parent)
    , m_draftURL(draftURL)
    , m_journal(journalBeside(draftURL))
    , m_draft(draftURL, {.aboutToReplace = [this](quint64 point) { m_journal.aboutToSave(point); },
                         .replaced = [this](quint64 point) { m_journal.saved(point); }})
{
    connect(&m_draft, &DraftFile::failed, this,
            [this](const QString &description) { note(m_draftFailure, description); });
    connect(&m_draft, &DraftFile::saved, this, &SessionKeeper::draftSaved);
    connect(&m_draft, &DraftFile::recovered, this, [this] { note(m_draftFailure, std::nullopt); });
}

SessionKeeper::~SessionKeeper() = default;

QString SessionKeeper::beside(const QString &name) const
{
    return QFileInfo(m_draftURL).path() + u'/' + name;
}

std::optional<QString> SessionKeeper::sessionURL() const
{
    return m_session ? std::optional(m_session->path()) : std::nullopt;
}

EditHistory SessionKeeper::takeUp(const LintoraSession &first)
{
    const std::optional<LintoraSession> draft = m_draft.load();
    const LintoraSession state = SessionTracks::normalized(draft.value_or(first));
    EditHistory history = m_journal.takeUp(state, draft.has_value());
    if (history.current() != state) // The last run ended before its newest state had reached the draft.
        saveDraft(history.current());
    return history;
}

void SessionKeeper::follow(const EditedSession &session)
{
    connect(&session, &EditedSession::moved, this,
            [this](HistoryMove move, const QString &title, const LintoraSession &state) {
                m_journal.note(move, title, state);
            });
}

void SessionKeeper::watchSession(const QString &file)
{
    m_hasArrived = false;
    note(m_sessionFailure, std::nullopt);
    m_session = std::make_unique<SessionFile>(file);
    connect(m_session.get(), &SessionFile::arrived, this, [this](const LintoraSession &session) {
        m_hasArrived = true;
        Q_EMIT arrived(session);
    });
    connect(m_session.get(), &SessionFile::overruled, this, &SessionKeeper::overruled);
    connect(m_session.get(), &SessionFile::failed, this,
            [this](const QString &description) { note(m_sessionFailure, description); });
    connect(m_session.get(), &SessionFile::recovered, this, [this] { note(m_sessionFailure, std::nullopt); });
}

void SessionKeeper::announceChange()
{
    if (m_hasArrived)
        m_session->announceChange();
}

void SessionKeeper::retractChange()
{
    if (m_session)
        m_session->retractChange();
}

void SessionKeeper::note(std::optional<QString> &failure, const std::optional<QString> &description)
{
    failure = description;
    Q_EMIT failureChanged();
}

void SessionKeeper::saveDraft(const LintoraSession &session)
{
    m_draft.save(session, m_journal.point());
}

void SessionKeeper::saveSession(const LintoraSession &session)
{
    if (m_hasArrived)
        m_session->save(session);
}

void SessionKeeper::adopt(const LintoraSession &session)
{
    if (m_hasArrived)
        m_session->adopt(session);
}

void SessionKeeper::refreshSession()
{
    if (m_session)
        m_session->refresh();
}

/// Keeps what became of it at once: what the file says comes through the event loop, behind saves on their way there.
template <class File>
void SessionKeeper::flush(File &file, std::optional<QString> &failure)
{
    try {
        file.flush();
    } catch (const std::exception &error) {
        note(failure, QString::fromUtf8(error.what()));
        throw;
    }
    note(failure, std::nullopt);
}

void SessionKeeper::flushDraft()
{
    flush(m_draft, m_draftFailure);
}

void SessionKeeper::flushSession()
{
    if (m_hasArrived)
        flush(*m_session, m_sessionFailure);
}
