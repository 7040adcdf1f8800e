// Draft and session.

#include "ai/Workspace.h"
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
const std::optional<QString> workStops = u"退出会停止正在进行的任务，它的结果不会保留。字幕已保存。"_s;
const QString sessionPrefix = u"无法同步悬浮字幕："_s;

} // namespace

void LintoraModel::openSession(const QUrl &link)
{
    m_import.run(
        u"正在打开字幕…"_s,
        [link](Job &job, const ProgressReport & /*report*/) {
            QString file = LaunchLink::sessionFile(link);
            LintoraSession::read(file,
                                 [&] { job.check(); }); // What cannot be read is refused before anything is watched.
            return file;
        },
        [this](const QString &found) {
            if (m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
                return;
            // The last edit still belongs to the session that was open till now.
            persistSession();
            m_link.open(found);
            m_openFile.clear();
            // A project that was kept for another session is not this one's.
            m_keptProject.forget();
            m_window.setPinned(true);
        },
        [this](const Failure &failure) { reportFailure(failure); });
}

void LintoraModel::schedulePersist()
{
    if (std::exchange(m_isPersisting, true))
        return;
    followSaving();
    // In the event loop, so that several changes of one operation are saved together.
    QMetaObject::invokeMethod(this, &LintoraModel::persistSession, Qt::QueuedConnection);
}

void LintoraModel::persistSession()
{
    m_isPersisting = false;
    m_keeper.saveDraft(m_session.state());
    m_link.save();
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

void LintoraModel::removeLeftovers()
{
    m_tidying.run(
        u"正在清理…"_s,
        [](Job & /*job*/, const ProgressReport & /*report*/) {
            Workspace::removeLeftovers();
            return true;
        },
        [](bool /*done*/) {}, [](const Failure & /*failure*/) {}); // the next start tries again
}

void LintoraModel::shutdownAI()
{
    const QDeadlineTimer deadline(BackgroundTask::patience); // for all of them together
    m_owner.task().finish(deadline);                         // first, so that what is being typed can still be kept
    m_modelDownloads.task().finish(deadline);
    m_aiServices.task().finish(deadline);
    m_sound.task().finish(deadline);
    m_import.finish(deadline);
    m_scriptMatching.task().finish(deadline);
    m_stylePresets.wait();
    m_glossary.wait();
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
    // What was refused meanwhile, an export to the same full disk perhaps, is told no longer than its cause.
    if (m_unsaved && !why)
        publish(m_failure, std::optional<Failure>(), &LintoraModel::failureChanged);
    publish(m_unsaved, why, &LintoraModel::failureChanged);
    followSaving();
    if (!why && !quitStopsWork()) // Then the question has answered itself.
        publish(m_quitQuestion, std::optional<QString>(), &LintoraModel::quitQuestionChanged);
}

void LintoraModel::followSaving()
{
    const bool isDone = !m_isPersisting && m_keeper.isDraftSaved();
    publish(m_saving,
            m_unsaved ? Saving::failing
            : isDone  ? Saving::done
                      : Saving::underWay,
            &LintoraModel::savingChanged);
}

bool LintoraModel::hasCues() const
{
    return std::ranges::any_of(tracks(), [](const SubtitleTrack &each) { return !each.items.isEmpty(); });
}

bool LintoraModel::requestQuit()
{
    Q_EMIT aboutToLoad();
    const std::optional<QString> why = save();
    const bool losesCues = why && hasCues();
    if (!losesCues && !aiBusy())
        return true;
    publish(m_quitQuestion, losesCues ? why : workStops, &LintoraModel::quitQuestionChanged);
    return false;
}

bool LintoraModel::quitStopsWork() const
{
    return m_quitQuestion == workStops;
}

void LintoraModel::answerQuit(bool quits)
{
    publish(m_quitQuestion, std::optional<QString>(), &LintoraModel::quitQuestionChanged);
    if (quits)
        Q_EMIT quitConfirmed();
}

/// Adds the session as it stands to those of late. `prefix` tells it from others of its name.
void LintoraModel::keepSession(const QString &prefix)
{
    const QString title = prefix + Exports::fileName(source().isEmpty() ? options().name : source());
    m_keeping.run(
        u"正在保留之前的字幕…"_s,
        [recent = m_recent, session = m_session.state(), title](Job & /*job*/, const ProgressReport & /*report*/) {
            recent.keep(session, title);
            return recent.list();
        },
        [this](const QList<RecentWork::Entry> &entries) {
            publish(m_recentWork, entries, &LintoraModel::recentWorkChanged);
        },
        [this](const Failure &failure) {
            reportFailure(Failure{.sentence = u"无法保留之前的字幕："_s + failure.sentence, .detail = failure.detail});
        });
}
