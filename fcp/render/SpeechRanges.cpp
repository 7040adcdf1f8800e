#include "fcp/render/SpeechRanges.h"

#include "core/Job.h"
#include "fcp/render/RenderedSound.h"

#include <algorithm>
#include <cstdlib>

namespace SpeechRanges {

namespace {

/// A stretch of frames, [begin, end).
struct Stretch
{
    qsizetype begin;
    qsizetype end;
};

/// What lies between the long silences.
QList<Stretch> sounding(const Peaks &peaks)
{
    QList<Stretch> stretches;
    for (qsizetype i = 0; i < peaks.size(); ++i) {
        if (peaks[i] <= silence)
            continue;
        if (stretches.isEmpty() || (i - stretches.last().end) * frameMS >= longSilenceMS)
            stretches.append({.begin = i, .end = i});
        stretches.last().end = i + 1;
    }
    return stretches;
}

/// The frame between begin and end, exclusive, at which it is quietest around; the one nearest to `wanted` of several.
qsizetype quietestFrame(const Peaks &peaks, const Stretch &search, qsizetype wanted)
{
    constexpr qsizetype half = restMS / frameMS / 2;
    qsizetype best = wanted;
    qint64 lowest = -1;
    for (qsizetype i = search.begin; i < search.end; ++i) {
        qint64 loudness = 0;
        for (qsizetype k = std::max<qsizetype>(i - half, 0); k < std::min(i + half, peaks.size()); ++k)
            loudness += peaks[k];
        const bool isNearer = std::abs(i - wanted) < std::abs(best - wanted);
        if (lowest < 0 || loudness < lowest || (loudness == lowest && isNearer)) {
            best = i;
            lowest = loudness;
        }
    }
    return best;
}

/// Where ranges of a stretch meet, with its own ends.
QList<qsizetype> borders(const Peaks &peaks, const Stretch &stretch)
{
    constexpr qsizetype reach = searchMS / frameMS;
    const qsizetype frames = stretch.end - stretch.begin;
    const qsizetype count = std::max<qsizetype>(1, (frames * frameMS + longestMS / 2) / longestMS);
    QList<qsizetype> result{stretch.begin};
    for (qsizetype i = 1; i < count; ++i) {
        const qsizetype wanted = stretch.begin + frames * i / count;
        result.append(quietestFrame(peaks, {.begin = wanted - reach, .end = wanted + reach + 1}, wanted));
    }
    return result << stretch.end;
}

} // namespace

Peaks peaks(RenderedSound &sound, const Job &job, qint64 ofMS)
{
    const qint64 frame = ofMS * RenderedSound::samplesPerMS; // samples
    Peaks result;
    result.reserve(sound.size() / frame + 1);
    qint64 place = 0;
    sound.forEachBlock([&](const std::vector<qint16> &samples) {
        job.check();
        for (const qint16 sample : samples) {
            if (place++ % frame == 0)
                result.append(0);
            result.last() = std::max(result.last(), quint16(std::abs(int(sample))));
        }
    });
    return result;
}

QList<SpeechRange> divide(const Peaks &peaks, qint64 durationMS)
{
    QList<SpeechRange> ranges;
    for (const Stretch &stretch : sounding(peaks)) {
        const QList<qsizetype> places = borders(peaks, stretch);
        for (qsizetype i = 0; i + 1 < places.size(); ++i) {
            const bool isFirst = i == 0;
            const bool isLast = i + 2 == places.size();
            const qint64 begin = places[i] * frameMS - (isFirst ? marginMS : 0);
            const qint64 end = places[i + 1] * frameMS + (isLast ? marginMS : 0);
            SpeechRange range{.begin = std::max<qint64>(begin, 0), .end = std::min(end, durationMS)};
            range.heardBegin = isFirst ? range.begin : range.begin - overlapMS;
            range.heardEnd = isLast ? range.end : range.end + overlapMS;
            ranges.append(range);
        }
    }
    return ranges;
}

} // namespace SpeechRanges
