#include "fcp/render/HeardSound.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/speech/KeptAnswers.h"
#include "ai/speech/Recognition.h"
#include "ai/speech/SpeechTranscription.h"
#include "core/ConversionError.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "fcp/render/MissingMedia.h"
#include "fcp/render/RenderedSound.h"
#include "fcp/render/SpeechRanges.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Makes the task's sound a WAV file in `workspace`, and returns its path.
QString soundOf(const SpeechTask &task, LocalAIJob &job, const Workspace &workspace, const ProgressReport &progress)
{
    if (const auto *const plan = std::get_if<FCPAudioPlan>(&task.source))
        return FCPAudioRenderer::render(task.leavesOutMissing ? MissingMedia::leaveOut(*plan) : *plan, job,
                                        workspace.path(), progress);
    progress({.what = u"正在读取音轨…"_s});
    QString wav = workspace.file(u"audio.wav"_s);
    SubtitleAI::extractAudio(std::get<QString>(task.source), wav, job, workspace);
    return wav;
}

/// A service's times may overlap.
QList<HeardWord> toWords(const QList<Subtitle> &cues)
{
    QList<HeardWord> words;
    for (const Subtitle &cue : cues) {
        const qint64 free = words.isEmpty() ? 0 : words.last().endMS;
        const qint64 start = std::max(cue.start, free);
        words.append({.text = cue.text, .startMS = start, .endMS = std::max(cue.end, start)});
    }
    return words;
}

} // namespace

HeardSound HeardSound::of(const SpeechTask &task, LocalAIJob &job, const ProgressReport &progress)
{
    const auto *const model = std::get_if<EngineModel>(&task.listener);
    if (model)
        model->prepare(job, progress);
    const Workspace workspace;
    const QString wav = soundOf(task, job, workspace, progress);
    RenderedSound sound(wav);
    const qint64 durationMS = sound.size() / RenderedSound::samplesPerMS;
    if (durationMS == 0)
        throw ConversionError(u"音轨没有可识别的采样，请确认文件可正常播放。"_s);
    HeardSound heard;
    heard.borders.emplace(SpeechRanges::peaks(sound, job, SpeechBorders::frameMS));
    if (model) {
        heard.words = SubtitleAI::recognizeWords(wav, durationMS, task.language, model->file, job, workspace, progress);
    } else {
        const AnsweredCues answered =
            SpeechSubtitleAPI::transcribeWords(wav, task.language, std::get<SpeechAPIConfiguration>(task.listener),
                                               KeptAnswers::defaultFolder(), job, progress);
        heard.words = toWords(answered.cues);
        heard.forget = answered.forget;
    }
    return heard;
}

ScriptTimingResult HeardSound::timed(const QString &script, const ScriptTiming::Rules &rules, const Check &check) const
{
    ScriptTimingResult result = ScriptTiming::timed(script, words, rules, check);
    if (borders)
        result.cues = TimedCues::snapped(std::move(result.cues), *borders, rules.grid);
    return result;
}
