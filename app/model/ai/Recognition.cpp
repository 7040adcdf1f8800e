#include "app/model/ai/Recognition.h"

#include "ai/LocalAIJob.h"
#include "app/model/SessionTracks.h"
#include "app/model/ai/AISettings.h"
#include "app/model/ai/AIWorkers.h"
#include "core/ConversionError.h"
#include "fcp/render/MissingMedia.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

Recognition::Recognition(EditedSession &session, CueOwnership &owner, SuspectMarks &suspects,
                         const AISettings &settings)
    : m_session(session)
    , m_owner(owner)
    , m_suspects(suspects)
    , m_settings(settings)
{
    connect(&owner, &CueOwnership::busyChanged, this, &Recognition::follow);
}

void Recognition::setSource(Source source)
{
    const bool isThere = (source == Source::media && m_media) || (source == Source::timeline && m_timeline);
    if (!isThere || m_source == source)
        return;
    m_source = source;
    Q_EMIT sourceChanged();
}

void Recognition::setMedia(const QUrl &file)
{
    m_media = file;
    m_source = Source::media;
    Q_EMIT sourceChanged();
}

void Recognition::setTimeline(const std::optional<FCPAudioPlan> &plan)
{
    if (m_timeline == plan)
        return;
    m_timeline = plan;
    m_missing.clear();
    m_leavesOutMissing = false;
    if (plan)
        m_source = Source::timeline;
    else if (m_source == Source::timeline)
        m_source = m_media ? Source::media : Source::none;
    Q_EMIT timelineChanged();
    Q_EMIT sourceChanged();
    findMissing();
}

void Recognition::offer(const std::optional<FCPAudioPlan> &plan)
{
    if (std::exchange(m_offered, plan) != plan)
        Q_EMIT offeredChanged();
}

void Recognition::takeOffered()
{
    if (const auto plan = m_offered)
        Q_EMIT offerTaken(*plan);
}

QString Recognition::title(Source source) const
{
    if (source == Source::media)
        return m_media ? m_media->fileName() : QString();
    return source == Source::timeline && m_timeline ? u"FCP 时间线 · "_s + m_timeline->name : QString();
}

QStringList Recognition::notices() const
{
    if (m_source != Source::timeline)
        return {};
    QStringList notices;
    if (m_timeline->hasAudioEffects)
        notices += u"按原始音轨识别，音频特效不参与。"_s;
    if (const auto notice = m_timeline->retimeNotice())
        notices += u"已跳过 "_s + *notice;
    if (const auto notice = m_timeline->unreadableNotice())
        notices += u"已跳过 "_s + *notice;
    if (!m_missing.isEmpty())
        notices += u"%1 个媒体文件找不到：%2"_s.arg(m_missing.size()).arg(QFileInfo(m_missing.first()).fileName());
    return notices;
}

void Recognition::findMissing()
{
    const auto take = [this](const QStringList &missing) {
        if (std::exchange(m_missing, missing) == missing)
            return;
        m_leavesOutMissing = m_leavesOutMissing && !missing.isEmpty();
        Q_EMIT sourceChanged();
    };
    if (!m_timeline) {
        m_search.cancel();
        return;
    }
    m_search.run(
        u"正在查找媒体文件…"_s,
        [plan = *m_timeline](Job & /*job*/, const ProgressReport & /*report*/) { return MissingMedia::find(plan); },
        take, [](const Failure & /*failure*/) {}); // the recognition itself will tell
}

void Recognition::setLeavesOutMissing(bool leavesOut)
{
    if (m_leavesOutMissing == leavesOut)
        return;
    m_leavesOutMissing = leavesOut;
    Q_EMIT sourceChanged();
}

void Recognition::setLanguage(SubtitleAI::SpeechLanguage language)
{
    if (m_language == language)
        return;
    m_language = language;
    Q_EMIT languageChanged();
}

SpeechTask Recognition::task() const
{
    if (m_source == Source::none)
        throw ConversionError(u"请先选择音视频，或接入 FCP 时间线。"_s);
    SpeechTask task{.language = m_language, .leavesOutMissing = m_leavesOutMissing};
    if (m_source == Source::media)
        task.source = m_media->toLocalFile();
    else
        task.source = *m_timeline;
    return task;
}

void Recognition::start()
{
    try {
        const SpeechTask task = this->task();
        const QString source = m_source == Source::media ? title(m_source) : m_timeline->name;
        const bool isBegun = m_owner.run<LocalAIJob>(
            u"正在准备…"_s,
            [task, source, listener = AIWorkers::listener(m_settings),
             reviewer = m_settings.choices().aiAutomaticReview ? AIWorkers::answerer(m_settings) : nullptr](
                LocalAIJob &job, const ProgressReport &report) {
                SpeechTask chosen = task;
                chosen.listener = listener();
                const SpokenCues::Reviewer chosenReviewer = reviewer ? std::optional(reviewer()) : std::nullopt;
                const SpokenCues::Result result = SpokenCues::make(chosen, chosenReviewer, job, report);
                const SoundLevels &levels = result.levels;
                const auto isSilent = [&](qint64 startMS, qint64 endMS) { return levels.isSilent(startMS, endMS); };
                // The recogniser's own words tell what it made up, whatever was made of them.
                const QList<Subtitle> &recognised = result.made.unreviewed.value_or(result.made.cues);
                return Outcome{.result = result, .suspects = SuspectCues::find(recognised, isSilent), .source = source};
            },
            [this](const Outcome &outcome) { take(outcome); });
        if (!isBegun)
            return;
    } catch (const ConversionError &error) {
        Q_EMIT refused(Failure::of(error));
        return;
    }
    m_isRunning = true;
    Q_EMIT runningChanged();
}

void Recognition::take(const Outcome &outcome)
{
    const GeneratedSubtitles &made = outcome.result.made;
    m_session.replace(SessionTracks::adding(m_session.state(), made.cues, outcome.source), u"语音识别"_s);
    outcome.result.forget();
    const QUuid track = *m_session.state().selectedTrackID;
    m_suspects.mark(track, made.cues, outcome.suspects);
    m_proofread.reset();
    if (made.unreviewed)
        m_proofread = Proofread{.trackID = track, .recognised = *made.unreviewed, .reviewed = made.cues};
    Q_EMIT proofreadChanged();
    QString message = u"已识别 %1 条字幕"_s.arg(made.cues.size());
    if (!outcome.suspects.isEmpty())
        message += u" · %1 条可疑，请核对"_s.arg(outcome.suspects.size());
    Q_EMIT done(message);
    if (made.notice)
        Q_EMIT refused(*made.notice);
}

void Recognition::follow()
{
    if (!m_isRunning || m_owner.isBusy())
        return;
    m_isRunning = false;
    Q_EMIT runningChanged();
}
