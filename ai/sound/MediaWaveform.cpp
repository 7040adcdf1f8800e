#include "ai/sound/MediaWaveform.h"

#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/sound/MediaSamples.h"
#include "core/PlatformError.h"
#include "core/SRT.h"
#include "core/sound/WaveformCache.h"
#include "core/sound/WaveformMaker.h"

#include <QElapsedTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

static_assert(MediaSamples::samplesPerMS == WaveformMaker::samplesPerMS);

/// Tells of a waveform as it grows, often, but not so often that the reading would take longer by it.
class GrowthTeller
{
public:
    explicit GrowthTeller(const MediaWaveform::Growth &growth)
        : m_growth(growth)
    {
        m_clock.start();
    }

    void tell(const WaveformMaker &maker, qint64 mediaMS)
    {
        if (m_clock.elapsed() < m_nextMS)
            return;
        const qint64 begin = m_clock.elapsed();
        const Waveform waveform = maker.waveform();
        std::optional<double> share;
        if (mediaMS > 0)
            share = std::min(1.0, double(waveform.lengthMS()) / double(mediaMS));
        m_growth(waveform, share);
        const qint64 end = m_clock.elapsed();
        m_nextMS = end + std::max(shortestMS, (end - begin) * restShare);
    }

private:
    static constexpr qint64 shortestMS = 100;
    static constexpr qint64 restShare = 20; ///< Times as long as telling took it rests.

    const MediaWaveform::Growth &m_growth;
    QElapsedTimer m_clock;
    qint64 m_nextMS = 0;
};

QString noticeOf(qint64 soundMS, qint64 mediaMS)
{
    constexpr qint64 toleranceMS = 2'000; // the sound of a whole medium may be a little shorter than its pictures
    if (soundMS + toleranceMS >= mediaMS)
        return {};
    const auto stamp = [](qint64 ms) { return SRT::stamp(ms).left(8); };
    return u"声音只到 %1，媒体全长 %2。"_s.arg(stamp(soundMS), stamp(mediaMS));
}

void keepWithin(const WaveformCache &cache, const WaveformCache::Key &key, const Waveform &waveform)
{
    try {
        cache.keep(key, waveform);
    } catch (const PlatformError &) { // NOLINT(bugprone-empty-catch)
        // It is read again the next time.
    }
}

} // namespace

MediaWaveform MediaWaveform::read(const QString &path, const WaveformCache *cache, LocalAIJob &job,
                                  const Growth &growth)
{
    const auto key = cache ? WaveformCache::Key::of(path) : std::nullopt;
    if (key) {
        if (const auto known = cache->find(*key))
            return {.waveform = *known};
    }
    const Workspace workspace;
    WaveformMaker maker;
    GrowthTeller teller(growth);
    qint64 wholeMS = 0;
    MediaSamples::read(path, job, workspace, [&](std::span<const qint16> samples, qint64 mediaMS) {
        maker.add(samples);
        wholeMS = mediaMS;
        teller.tell(maker, mediaMS);
    });
    MediaWaveform result{.waveform = maker.waveform()};
    result.notice = noticeOf(result.waveform.lengthMS(), wholeMS);
    // What was still being written, or broke off, is read anew the next time.
    if (key && result.notice.isEmpty() && WaveformCache::Key::of(path) == key)
        keepWithin(*cache, *key, result.waveform);
    return result;
}
