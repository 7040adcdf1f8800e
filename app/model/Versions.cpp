#include "app/model/Versions.h"

#include "app/model/Exports.h"
#include "app/model/SessionTracks.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

qsizetype cueCount(const LintoraSession &session)
{
    qsizetype count = 0;
    for (const SubtitleTrack &track : *session.tracks)
        count += track.items.size();
    return count;
}

/// Whether so much of the cues changes that the session before is worth being kept.
bool isLarge(const LintoraSession &before, const LintoraSession &after)
{
    if (cueCount(before) == 0)
        return false;
    const auto isIn = [](const LintoraSession &session) {
        return [&](const SubtitleTrack &track) { return SessionTracks::indexOf(session, track.id).has_value(); };
    };
    if (!std::ranges::all_of(*before.tracks, isIn(after)) || !std::ranges::all_of(*after.tracks, isIn(before)))
        return true;
    const SessionDifference difference = SessionDifference::between(before, after);
    return difference.added + difference.removed + difference.changed >= Versions::manyCues;
}

} // namespace

Versions::Versions(EditedSession &session, CueOwnership &owner, const QString &folder, Clock clock)
    : m_session(session)
    , m_owner(owner)
    , m_clock(std::move(clock))
    , m_folder(folder, limits)
    , m_last(session.state())
    , m_thread([this] {
        keepWaiting();
        return RoundThread::Pause();
    })
{
    connect(&session, &EditedSession::moved, this, &Versions::follow);
    connect(&session, &EditedSession::changed, this, [this] {
        if (m_isShown)
            read();
    });
}

Versions::~Versions()
{
    finishKeeping();
}

void Versions::follow(HistoryMove move, const QString &title, const LintoraSession &state)
{
    if (move == HistoryMove::insertBefore)
        return;
    const LintoraSession before = std::exchange(m_last, state);
    const QDateTime now = m_clock();
    // What has no title, the choice of a track, is no work.
    const bool isStep = (move == HistoryMove::record || move == HistoryMove::amend) && !title.isEmpty();
    if (isStep && before.tracks != state.tracks)
        consider({.before = before, .after = state, .title = title + u'前', .at = now});
    if (!m_since || now < *m_since) // the clock was set back
        m_since = now;
    if (now - *m_since < interval)
        return;
    m_since = now;
    consider({.before = state, .after = {}, .title = u"自动保留"_s, .at = now});
}

void Versions::consider(const Candidate &candidate)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(candidate);
    }
    m_thread.wake();
}

void Versions::finishKeeping()
{
    m_thread.finishRound();
}

void Versions::keepWaiting()
{
    std::unique_lock lock(m_mutex);
    const std::vector<Candidate> waiting = std::exchange(m_waiting, {});
    lock.unlock();
    for (const Candidate &candidate : waiting) {
        const LintoraSession &kept = candidate.before;
        if (candidate.after && !isLarge(kept, *candidate.after))
            continue;
        try {
            const QString name = Exports::fileName(kept.source.isEmpty() ? kept.options.name : kept.source);
            m_folder.keep(kept, candidate.title + u'_' + name, candidate.at);
            const auto follow = [this] {
                if (m_isShown)
                    read();
            };
            QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
        } catch (const std::exception &error) {
            Failure failure = Failure::of(error);
            failure.sentence = u"无法保留历史版本："_s + failure.sentence;
            QMetaObject::invokeMethod(
                this, [this, failure] { Q_EMIT refused(failure); }, Qt::QueuedConnection);
        }
    }
}

void Versions::show()
{
    if (std::exchange(m_isShown, true))
        return;
    read();
    Q_EMIT shownChanged();
}

void Versions::close()
{
    if (!std::exchange(m_isShown, false))
        return;
    m_task.cancel();
    m_versions.clear();
    Q_EMIT shownChanged();
}

/// What is shown stays until what takes its place is there.
void Versions::read()
{
    m_task.run(
        u"正在读取历史版本…"_s,
        [folder = m_folder, now = m_session.state()](Job &job, const ProgressReport & /*report*/) {
            const auto check = [&job] { job.check(); };
            QList<Version> versions;
            for (const KeptSessions::Entry &entry : folder.list()) {
                job.check();
                Version version{.entry = entry, .cues = {}, .difference = {}};
                try {
                    const LintoraSession session = SessionTracks::normalized(LintoraSession::read(entry.file, check));
                    version.cues = cueCount(session);
                    version.difference = SessionDifference::between(now, session, check);
                } catch (const PlatformError &) { // It is listed as one that cannot be read.
                } catch (const ConversionError &) {
                }
                versions += version;
            }
            return versions;
        },
        [this](const QList<Version> &versions) {
            m_versions = versions;
            Q_EMIT versionsChanged();
            setStatus(versions.isEmpty() ? u"还没有历史版本"_s : u"%1 个历史版本"_s.arg(versions.size()));
        },
        [this](const Failure &failure) { setStatus(failure.sentence, true); });
    setStatus(u"正在读取历史版本…"_s);
}

void Versions::restore(qsizetype version)
{
    if (version < 0 || version >= m_versions.size() || m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
        return;
    m_task.run(
        u"正在恢复历史版本…"_s,
        [file = m_versions.at(version).entry.file](Job &job, const ProgressReport & /*report*/) {
            return SessionTracks::normalized(LintoraSession::read(file, [&job] { job.check(); }));
        },
        [this](const LintoraSession &session) {
            if (m_owner.refuses(u"任务处理中，请先取消再切换文件"_s))
                return;
            close();
            m_session.replace(session, u"恢复历史版本"_s);
            Q_EMIT done(u"已恢复历史版本，可撤销"_s);
        },
        [this](const Failure &failure) { setStatus(failure.sentence, true); });
    setStatus(u"正在恢复历史版本…"_s);
}

void Versions::setStatus(const QString &status, bool isRefused)
{
    m_status = status;
    m_isRefused = isRefused;
    Q_EMIT statusChanged();
}
