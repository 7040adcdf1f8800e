#include "fcp/render/SpokenCues.h"

#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/speech/KeptAnswers.h"
#include "ai/speech/Recognition.h"
#include "ai/speech/SpeechTranscription.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "fcp/render/MissingMedia.h"
#include "fcp/render/RenderedSound.h"

#include <memory>
#include <vector>

using SubtitleAI::NoSpeech;

namespace SpokenCues {

namespace {

/// What was heard, and what is to be forgotten once its cues are where the person finds them.
struct Heard
{
    QList<Subtitle> cues;
    std::vector<std::function<void()>> forget = {};
};

/// One run of a task.
class Listening
{
public:
    Listening(const SpeechTask &task, LocalAIJob &job, const ProgressReport &progress)
        : m_task(task)
        , m_job(job)
        , m_progress(progress)
    {}

    Heard hear()
    {
        if (const auto *const plan = std::get_if<FCPAudioPlan>(&m_task.source))
            return hearTimeline(m_task.leavesOutMissing ? MissingMedia::leaveOut(*plan) : *plan);
        const QString &media = std::get<QString>(m_task.source);
        if (const auto *const service = std::get_if<SpeechAPIConfiguration>(&m_task.listener)) {
            const AnsweredCues answered =
                SpeechSubtitleAPI::transcribe(media, m_task.language, *service, KeptAnswers::defaultFolder(), m_job,
                                              NoSpeech::isRefused, m_progress, trackReady());
            return {.cues = answered.cues, .forget = {answered.forget}};
        }
        return {.cues = SubtitleAI::transcribe(media, m_task.language, std::get<EngineModel>(m_task.listener), m_job,
                                               NoSpeech::isRefused, m_progress, trackReady())};
    }

    const SoundLevels &levels() const { return m_levels; }

private:
    SubtitleAI::TrackReady trackReady()
    {
        return [this](const QString &wav) {
            RenderedSound sound(wav);
            m_levels = SoundLevels(SpeechRanges::peaks(sound, m_job));
        };
    }

    Heard hearTimeline(const FCPAudioPlan &plan)
    {
        if (const auto *const model = std::get_if<EngineModel>(&m_task.listener))
            model->prepare(m_job, m_progress);
        Heard heard;
        const auto recognize = [&](const QString &wav, qint64 durationMS, const Workspace &workspace,
                                   const ProgressReport &report) {
            const AnsweredCues answered = hearRange(wav, durationMS, workspace, report);
            heard.forget.push_back(answered.forget);
            return answered.cues;
        };
        heard.cues = FCPAudioRenderer::transcribe(plan, m_job, recognize, m_progress, trackReady());
        return heard;
    }

    /// A range of a timeline, where nobody may be speaking.
    AnsweredCues hearRange(const QString &wav, qint64 durationMS, const Workspace &workspace,
                           const ProgressReport &report)
    {
        if (const auto *const service = std::get_if<SpeechAPIConfiguration>(&m_task.listener))
            return SpeechSubtitleAPI::transcribe(wav, m_task.language, *service, KeptAnswers::defaultFolder(), m_job,
                                                 NoSpeech::isAllowed, report);
        const QString model = std::get<EngineModel>(m_task.listener).file;
        return {.cues = SubtitleAI::recognize(wav, durationMS, m_task.language, model, m_job, NoSpeech::isAllowed,
                                              workspace, report),
                .forget = [] {}};
    }

    const SpeechTask &m_task;
    LocalAIJob &m_job;
    const ProgressReport &m_progress;
    SoundLevels m_levels;
};

} // namespace

Result make(const SpeechTask &task, const Reviewer &reviewer, LocalAIJob &job, const ProgressReport &progress)
{
    Listening listening(task, job, progress);
    Heard heard = listening.hear();
    std::function<QList<Subtitle>(const QList<Subtitle> &)> review;
    if (reviewer) {
        review = [&](const QList<Subtitle> &cues) {
            const AnsweredCues reviewed = SubtitleAI::answer(cues, {.work = SubtitleAI::TextWork::proofreading},
                                                             *reviewer, AnswerLedger::defaultFolder(), job, progress);
            heard.forget.push_back(reviewed.forget);
            return reviewed.cues;
        };
    }
    const GeneratedSubtitles made = SubtitleGeneration::finish(heard.cues, review);
    return {.made = made, .levels = listening.levels(), .forget = [forget = std::move(heard.forget)] {
                for (const auto &each : forget)
                    each();
            }};
}

} // namespace SpokenCues
