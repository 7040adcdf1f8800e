#include "fcp/render/HeardSound.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/speech/Recognition.h"
#include "core/ConversionError.h"
#include "core/timing/SpeechBorders.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "fcp/render/RenderedSound.h"
#include "fcp/render/SpeechRanges.h"

using namespace Qt::StringLiterals;

HeardSound HeardSound::of(const std::variant<QString, FCPAudioPlan> &source, LocalAIJob &job, const Listen &listen,
                          const ProgressReport &progress)
{
    const Workspace workspace;
    QString wav = workspace.file(u"audio.wav"_s);
    if (const auto *plan = std::get_if<FCPAudioPlan>(&source)) {
        wav = FCPAudioRenderer::render(*plan, job, workspace.path(), progress);
    } else {
        progress({.what = u"正在读取音轨…"_s});
        SubtitleAI::extractAudio(std::get<QString>(source), wav, job, workspace);
    }
    RenderedSound sound(wav);
    const qint64 durationMS = sound.size() / RenderedSound::samplesPerMS;
    if (durationMS == 0)
        throw ConversionError(u"音轨没有可识别的采样，请确认文件可正常播放。"_s);
    HeardSound heard;
    heard.peaks = SpeechRanges::peaks(sound, job, SpeechBorders::frameMS);
    heard.words = listen(wav, durationMS, workspace, progress);
    return heard;
}
