#include "core/sound/WaveformMaker.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int samplesOfStretch = WaveformMaker::samplesPerMS * int(Waveform::peakMS);

/// How far samples swing. Plain loops over samples of one size are what a compiler makes eight at a time of.
struct Reach
{
    qint16 low;
    qint16 high;
};

/// Of one sample at least.
Reach reachOf(std::span<const qint16> samples)
{
    qint16 low = samples.front();
    qint16 high = samples.front();
    for (const qint16 sample : samples) {
        low = std::min(low, sample);
        high = std::max(high, sample);
    }
    return {.low = low, .high = high};
}

/// A sample in 1/127 of full scale, rounded outwards: what is not silent is seen.
qint8 scaled(int sample)
{
    constexpr int steps = 127;
    constexpr int fullScale = 32'768;
    const int size = (std::abs(sample) * steps + fullScale - 1) / fullScale;
    return qint8(sample < 0 ? -size : size);
}

} // namespace

void WaveformMaker::add(std::span<const qint16> samples)
{
    while (!samples.empty()) {
        const auto count = std::min(samples.size(), size_t(samplesOfStretch - m_samples));
        const auto [low, high] = reachOf(samples.first(count));
        m_low = m_samples == 0 ? low : std::min<int>(m_low, low);
        m_high = m_samples == 0 ? high : std::max<int>(m_high, high);
        m_samples += int(count);
        samples = samples.subspan(count);
        if (m_samples == samplesOfStretch)
            endStretch();
    }
}

void WaveformMaker::endStretch()
{
    m_open.set(m_count++, {.low = scaled(m_low), .high = scaled(m_high)}, quint16(std::max(-m_low, m_high)));
    m_samples = 0;
    if (m_count < Waveform::Part::capacity)
        return;
    m_open.fold();
    m_full.m_parts.append(std::make_shared<const Waveform::Part>(std::exchange(m_open, {})));
    m_full.m_peaks += std::exchange(m_count, 0);
}

Waveform WaveformMaker::waveform() const
{
    WaveformMaker ended = *this;
    if (ended.m_samples > 0)
        ended.endStretch();
    Waveform result = std::move(ended.m_full);
    if (ended.m_count > 0) {
        ended.m_open.fold();
        result.m_parts.append(std::make_shared<const Waveform::Part>(std::move(ended.m_open)));
        result.m_peaks += ended.m_count;
    }
    result.findSpeech();
    return result;
}
