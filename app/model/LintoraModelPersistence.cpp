// Draft and session.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "store/LaunchLink.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString draftPrefix = u"无法保存字幕草稿："_s;
const QString sessionPrefix = u"无法同步悬浮字幕："_s;

} // namespace

void LintoraModel::openSession(const QUrl &link)
{
    m_import.run(
        u"正在打开字幕…"_s,
        [link](Job & /*job*/, const ProgressReport & /*report*/) {
            QString file = LaunchLink::sessionFile(link);
            LintoraSession::read(file); // What cannot be read is refused before anything is watched.
            return file;
        },
        [this](const QString &found) {
            if (refuseWhileBusy(u"任务处理中，请先取消再切换文件"_s))
                return;
            // The last edit still belongs to the session that was open till now.
            persistSession();
            m_isOpening = true;
            m_keeper.watchSession(found);
            // A project that was kept for another job is not this one's.
            publish(m_project, std::optional<FCPProject>(), &LintoraModel::projectChanged);
            setPinned(true);
        },
        [this](const QString &sentence) { reportFailure(sentence); });
}

/// Takes up what the extension wrote.
void LintoraModel::takeSession(const LintoraSession &session)
{
    if (aiBusy()) {
        m_heldSession = session;
        m_jobWhenHeld = m_job;
        return;
    }
    const LintoraSession job = SessionTracks::normalized(session);
    // Agreed before it is in place: whoever hears of it may change it, which then has to be written.
    m_keeper.adopt(job);
    const bool isOpening = std::exchange(m_isOpening, false);
    const bool wasInSession = isInSession();
    replaceJob(job, isOpening ? Step::load : Step::record);
    if (isOpening || !wasInSession)
        m_sessionBegins = m_history.pastCount();
    if (isOpening)
        report(source().isEmpty() ? QString() : u"已载入"_s);
}

/// Takes up a version that had to wait, unless the job has become another one meanwhile: then it lies one step back.
void LintoraModel::takeHeldSession()
{
    const auto held = std::exchange(m_heldSession, std::nullopt);
    if (!held)
        return;
    // Which track is looked at makes no other job.
    if (m_job.tracks == m_jobWhenHeld.tracks && m_job.source == m_jobWhenHeld.source)
        takeSession(*held);
    else
        keepOverruled(*held);
    schedulePersist();
}

/// A version of the extension's whose place our own change has taken can be had back by undoing once.
void LintoraModel::keepOverruled(const LintoraSession &session)
{
    m_history.insertBefore(SessionTracks::normalized(session));
    Q_EMIT historyChanged();
}

/// Whether the job is one of the session's states. Undoing beyond its opening leads to another job, which is none of
/// the extension's business.
bool LintoraModel::isInSession() const
{
    return m_keeper.sessionURL() && !m_isOpening && m_history.pastCount() >= m_sessionBegins;
}

void LintoraModel::schedulePersist()
{
    if (std::exchange(m_isPersisting, true))
        return;
    // In the event loop, so that several changes of one operation are saved together.
    QMetaObject::invokeMethod(this, &LintoraModel::persistSession, Qt::QueuedConnection);
}

void LintoraModel::persistSession()
{
    m_isPersisting = false;
    m_keeper.saveDraft(m_job);
    // A version that waits for a job's end must not be written over.
    if (isInSession() && !m_heldSession)
        m_keeper.saveSession(m_job);
    else
        m_keeper.retractChange();
    reportUnsaved();
}

void LintoraModel::saveDraft()
{
    persistSession();
    const auto attempt = [this](auto save, const QString &prefix) {
        try {
            (m_keeper.*save)();
        } catch (const std::exception &error) {
            report(prefix + QString::fromUtf8(error.what()));
        }
    };
    attempt(&SessionKeeper::flushDraft, draftPrefix);
    attempt(&SessionKeeper::flushSession, sessionPrefix);
}

void LintoraModel::shutdownAI()
{
    m_owner.finish(); // first, so that what is being typed can still be kept
    m_import.finish();
    m_match.finish();
    m_presets.wait();
    m_export.wait();
}

/// Says so as long as something cannot be saved, whatever was said since: it is worth more than any other message.
void LintoraModel::reportUnsaved()
{
    if (m_keeper.draftFailure())
        report(draftPrefix + *m_keeper.draftFailure());
    else if (m_keeper.sessionFailure())
        report(sessionPrefix + *m_keeper.sessionFailure());
}
