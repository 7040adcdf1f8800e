#include "ai/sound/MediaWaveform.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/sound/MediaSamples.h"
#include "core/SRT.h"
#include "core/sound/WaveformCache.h"
#include "core/sound/WaveformMaker.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

static_assert(MediaSamples::samplesPerMS == WaveformMaker::samplesPerMS);

WaveformTeller::News newsOf(const WaveformMaker &maker, qint64 mediaMS)
{
    WaveformTeller::News news{.waveform = maker.waveform(), .share = {}};
    if (mediaMS > 0)
        news.share = std::min(1.0, double(news.waveform.lengthMS()) / double(mediaMS));
    return news;
}

QString noticeOf(qint64 soundMS, qint64 mediaMS)
{
    constexpr qint64 toleranceMS = 2'000; // the sound of a whole medium may be a little shorter than its pictures
    if (soundMS + toleranceMS >= mediaMS)
        return {};
    const auto stamp = [](qint64 ms) { return SRT::stamp(ms).left(8); };
    return u"声音只到 %1，媒体全长 %2。"_s.arg(stamp(soundMS), stamp(mediaMS));
}

} // namespace

MediaWaveform MediaWaveform::read(const QString &path, const WaveformCache *cache, LocalAIJob &job,
                                  const WaveformTeller::Growth &growth)
{
    const auto key = cache ? WaveformCache::Key::of(path) : std::nullopt;
    if (key) {
        if (const auto known = cache->find(*key))
            return {.waveform = *known};
    }
    const Workspace workspace;
    WaveformMaker maker;
    WaveformTeller teller(growth);
    qint64 wholeMS = 0;
    MediaSamples::read(path, job, workspace, [&](std::span<const qint16> samples, qint64 mediaMS) {
        maker.add(samples);
        wholeMS = mediaMS;
        teller.tell([&] { return newsOf(maker, mediaMS); });
    });
    MediaWaveform result{.waveform = maker.waveform()};
    result.notice = noticeOf(result.waveform.lengthMS(), wholeMS);
    if (!result.notice.isEmpty())
        MediaSamples::refuseMissing(path); // its drive was unplugged: what the helper takes for the end
    // What was still being written, or broke off, is read anew the next time.
    if (key && result.notice.isEmpty() && WaveformCache::Key::of(path) == key)
        cache->keepWhereItMay(*key, result.waveform);
    return result;
}
