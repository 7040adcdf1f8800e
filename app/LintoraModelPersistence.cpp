// Draft and session.

#include "app/JobTracks.h"
#include "app/LintoraModel.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "store/LaunchLink.h"

#include <utility>

using namespace Qt::StringLiterals;

void LintoraModel::openSession(const QUrl &link)
{
    m_import.run(
        u"正在打开字幕…"_s,
        [link](LocalAIJob & /*job*/, const BackgroundTask::Progress & /*progress*/) {
            const QString file = LaunchLink::sessionFile(link);
            LintoraSession::read(file); // What cannot be read is refused before anything is watched.
            return file;
        },
        [this](const QString &file) {
            if (refuseWhileBusy(u"任务处理中，请先取消再切换文件"_s))
                return;
            m_isOpening = true;
            m_keeper.watchSession(file);
            setPinned(true);
        },
        [this](const QString &sentence) { reportFailure(sentence); });
}

/// Takes up what the extension wrote.
void LintoraModel::takeSession(const LintoraSession &session)
{
    if (aiBusy()) {
        m_heldSession = session;
        return;
    }
    const LintoraSession job = JobTracks::normalized(session);
    if (std::exchange(m_isOpening, false)) {
        loadJob(job);
        report(source().isEmpty() ? QString() : u"已载入"_s);
    } else {
        replaceJob(job);
    }
    m_keeper.adopt(m_job);
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
    m_keeper.save(m_job);
}

void LintoraModel::saveDraft()
{
    persistSession();
    try {
        m_keeper.flushDraft();
    } catch (const std::exception &error) {
        reportUnsaved(u"无法保存字幕草稿："_s, QString::fromUtf8(error.what()));
    }
    try {
        m_keeper.flushSession();
    } catch (const std::exception &error) {
        reportUnsaved(u"无法同步悬浮字幕："_s, QString::fromUtf8(error.what()));
    }
}

void LintoraModel::shutdownAI()
{
    cancelAI();
    m_import.finish();
    m_match.finish();
    m_presets.wait();
    m_export.wait();
}

void LintoraModel::reportUnsaved(const QString &prefix, const QString &description)
{
    publish(m_message, prefix + description, &LintoraModel::messageChanged);
}
