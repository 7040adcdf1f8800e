#include "cli/SoundInput.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/ProgressLines.h"
#include "core/sound/WaveformCache.h"
#include "fcp/render/FCPAudioRenderer.h"
#include "store/Locations.h"

using namespace Qt::StringLiterals;

void SoundInput::add(CLI::App &command)
{
    command.add_option("media", input, "音频或视频文件，或项目（.fcpxml、.fcpxmld）")
        ->required()
        ->type_name("MEDIA|PROJECT")
        ->check(Arguments::notEmpty);
    audio.addSwitches(command);
}

Waveform SoundInput::waveform(const Arguments::Output &output) const
{
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(output);
    const WaveformCache cache(Locations::waveforms());
    const Workspace workspace;
    QString path = Arguments::toPath(input);
    const bool isProject = ProjectAudio::isProject(input);
    if (isProject) {
        const FCPAudioPlan plan = audio.plan(input);
        ProjectAudio::tellNotices(plan, output);
        path = FCPAudioRenderer::render(plan, job, workspace.path(), [&](const Progress &now) { lines.show(now); });
    }
    const auto tell = [&](const Waveform & /*waveform*/, std::optional<double> share) {
        lines.show({.what = u"正在读取声音…"_s, .share = share});
    };
    const MediaWaveform read = MediaWaveform::read(path, isProject ? nullptr : &cache, job, tell);
    if (!read.notice.isEmpty())
        output.report(read.notice);
    return read.waveform;
}
