// Draft and session.

#include "app/model/Exports.h"
#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "store/LaunchLink.h"

#include <algorithm>
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
            // A project that was kept for another session is not this one's.
            publish(m_project, std::optional<FCPProject>(), &LintoraModel::projectChanged);
            setPinned(true);
        },
        [this](const Failure &failure) { reportFailure(failure); });
}

/// Takes up what the extension wrote.
void LintoraModel::takeSession(const LintoraSession &session)
{
    if (aiBusy()) {
        m_heldSession = session;
        m_sessionWhenHeld = m_session;
        return;
    }
    const LintoraSession taken = SessionTracks::normalized(session);
    // Agreed before it is in place: whoever hears of it may change it, which then has to be written.
    m_keeper.adopt(taken);
    const bool isOpening = std::exchange(m_isOpening, false);
    const bool wasInSession = isInSession();
    replaceSession(taken, u"悬浮字幕更新"_s, isOpening ? Step::load : Step::record);
    if (isOpening || !wasInSession)
        m_sessionBegins = m_history.pastCount();
    if (isOpening)
        report(source().isEmpty() ? QString() : u"已载入"_s);
}

/// Takes up a version that had to wait, unless the session has become another one meanwhile: then it lies one step
/// back.
void LintoraModel::takeHeldSession()
{
    const auto held = std::exchange(m_heldSession, std::nullopt);
    if (!held)
        return;
    // Which track is looked at makes no other session.
    if (m_session.tracks == m_sessionWhenHeld.tracks && m_session.source == m_sessionWhenHeld.source)
        takeSession(*held);
    else
        keepOverruled(*held);
    schedulePersist();
}

/// A version of the extension's whose place our own change has taken can be had back by undoing once.
void LintoraModel::keepOverruled(const LintoraSession &session)
{
    m_history.insertBefore(SessionTracks::normalized(session), u"悬浮字幕更新"_s);
    Q_EMIT historyChanged();
}

/// Whether this is one of the shared session's states. Undoing beyond its opening leads to another session, which is
/// none of the extension's business.
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
    m_keeper.saveDraft(m_session);
    // A version that waits for a job's end must not be written over.
    if (isInSession() && !m_heldSession)
        m_keeper.saveSession(m_session);
    else
        m_keeper.retractChange();
    reportUnsaved();
}

void LintoraModel::saveDraft()
{
    save();
}

/// Saves before it returns. Why that failed, if it did: the draft's reason before the session's.
std::optional<QString> LintoraModel::save()
{
    persistSession();
    std::optional<QString> why;
    const auto attempt = [this, &why](auto flush, const QString &prefix) {
        try {
            (m_keeper.*flush)();
        } catch (const std::exception &error) {
            why = prefix + QString::fromUtf8(error.what());
        }
    };
    attempt(&SessionKeeper::flushSession, sessionPrefix);
    attempt(&SessionKeeper::flushDraft, draftPrefix);
    setUnsaved(why);
    return why;
}

void LintoraModel::shutdownAI()
{
    const QDeadlineTimer deadline(BackgroundTask::patience); // for all of them together
    m_owner.finish(deadline);                                // first, so that what is being typed can still be kept
    m_import.finish(deadline);
    m_match.finish(deadline);
    m_stylePresets.wait();
    m_export.wait();
    m_keeping.wait();
}

/// Says so as long as something cannot be saved, whatever was said since: it is worth more than any other message.
void LintoraModel::reportUnsaved()
{
    if (m_keeper.draftFailure())
        setUnsaved(draftPrefix + *m_keeper.draftFailure());
    else if (m_keeper.sessionFailure())
        setUnsaved(sessionPrefix + *m_keeper.sessionFailure());
    else
        setUnsaved(std::nullopt);
}

void LintoraModel::setUnsaved(const std::optional<QString> &why)
{
    if (why)
        publish(m_message, *why, &LintoraModel::messageChanged);
    else if (m_message == m_unsaved)
        publish(m_message, QString(), &LintoraModel::messageChanged);
    publish(m_unsaved, why, &LintoraModel::failureChanged);
    if (!why) // Then the question has answered itself.
        publish(m_quitQuestion, std::optional<QString>(), &LintoraModel::quitQuestionChanged);
}

bool LintoraModel::hasCues() const
{
    return std::ranges::any_of(tracks(), [](const SubtitleTrack &each) { return !each.items.isEmpty(); });
}

bool LintoraModel::requestQuit()
{
    Q_EMIT aboutToLoad();
    const std::optional<QString> why = save();
    if (!why || !hasCues())
        return true;
    publish(m_quitQuestion, why, &LintoraModel::quitQuestionChanged);
    return false;
}

void LintoraModel::answerQuit(bool quits)
{
    publish(m_quitQuestion, std::optional<QString>(), &LintoraModel::quitQuestionChanged);
    if (quits)
        Q_EMIT quitConfirmed();
}

/// Work that another session is about to take the place of can be had back after the end of the program too.
void LintoraModel::keepEdited()
{
    if (hasCues() && !(m_sessionAsLoaded && m_sessionAsLoaded->tracks == m_session.tracks))
        keepSession();
}

/// Adds the session as it stands to those of late. `prefix` tells it from others of its name.
void LintoraModel::keepSession(const QString &prefix)
{
    const QString title = prefix + Exports::fileName(source().isEmpty() ? options().name : source());
    m_keeping.run(
        u"正在保留之前的字幕…"_s,
        [recent = m_recent, session = m_session, title](Job & /*job*/, const ProgressReport & /*report*/) {
            recent.keep(session, title);
            return recent.list();
        },
        [this](const QList<RecentSessions::Entry> &entries) {
            publish(m_recentSessions, entries, &LintoraModel::recentSessionsChanged);
        },
        [this](const Failure &failure) {
            reportFailure(Failure{.sentence = u"无法保留之前的字幕："_s + failure.sentence, .detail = failure.detail});
        });
}
