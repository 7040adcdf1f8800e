#include "app/JobKeeper.h"

JobKeeper::JobKeeper(const QString &draftURL, QObject *parent)
    : QObject(parent)
    , m_draftURL(draftURL)
    , m_draft(draftURL)
{
    connect(&m_draft, &DraftFile::failed, this,
            [this](const QString &description) { note(m_draftFailure, description); });
    connect(&m_draft, &DraftFile::recovered, this, [this] { m_draftFailure.reset(); });
}

JobKeeper::~JobKeeper() = default;

std::optional<QString> JobKeeper::sessionURL() const
{
    return m_session ? std::optional(m_session->path()) : std::nullopt;
}

std::optional<LintoraSession> JobKeeper::loadDraft()
{
    return m_draft.load();
}

void JobKeeper::watchSession(const QString &file)
{
    m_hasArrived = false;
    m_sessionFailure.reset();
    m_session = std::make_unique<SessionFile>(file);
    connect(m_session.get(), &SessionFile::arrived, this, [this](const LintoraSession &session) {
        m_hasArrived = true;
        Q_EMIT arrived(session);
    });
    connect(m_session.get(), &SessionFile::overruled, this, &JobKeeper::overruled);
    connect(m_session.get(), &SessionFile::failed, this,
            [this](const QString &description) { note(m_sessionFailure, description); });
    connect(m_session.get(), &SessionFile::recovered, this, [this] { m_sessionFailure.reset(); });
}

void JobKeeper::announceChange()
{
    if (m_hasArrived)
        m_session->announceChange();
}

void JobKeeper::retractChange()
{
    if (m_session)
        m_session->retractChange();
}

void JobKeeper::note(std::optional<QString> &failure, const QString &description)
{
    failure = description;
    Q_EMIT failed();
}

void JobKeeper::saveDraft(const LintoraSession &job)
{
    m_draft.save(job);
}

void JobKeeper::saveSession(const LintoraSession &job)
{
    if (m_hasArrived)
        m_session->save(job);
}

void JobKeeper::adopt(const LintoraSession &job)
{
    if (m_hasArrived)
        m_session->adopt(job);
}

void JobKeeper::refreshSession()
{
    if (m_session)
        m_session->refresh();
}

void JobKeeper::flushDraft()
{
    m_draft.flush();
}

void JobKeeper::flushSession()
{
    if (m_hasArrived)
        m_session->flush();
}
