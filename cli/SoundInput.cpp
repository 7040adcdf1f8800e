#include "cli/SoundInput.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/sound/MediaWaveform.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/ProgressLines.h"
#include "core/sound/WaveformCache.h"
#include "fcp/render/TimelineWaveform.h"
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
    const auto show = [&](const Progress &now) { lines.show(now); };
    const auto tell = [&](const WaveformTeller::News &news) {
        lines.show({.what = u"正在读取声音…"_s, .share = news.share});
    };
    if (ProjectAudio::isProject(input)) {
        const FCPAudioPlan plan = audio.plan(input);
        ProjectAudio::tellNotices(plan, output);
        if (const auto known = cache.find(TimelineWaveform::key(plan)))
            return *known;
        const Workspace workspace;
        return TimelineWaveform::render(plan, cache, job, workspace.path(), show, tell).waveform;
    }
    const MediaWaveform read = MediaWaveform::read(Arguments::toPath(input), &cache, job, tell);
    if (!read.notice.isEmpty())
        output.report(read.notice);
    return read.waveform;
}
