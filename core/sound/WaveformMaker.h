#pragma once

#include "core/sound/Waveform.h"

#include <span>

/// Makes a waveform of a recording as its samples come.
class WaveformMaker
{
public:
    static constexpr int samplesPerMS = 16; ///< Sound is taken at 16 kHz, one channel, 16 bits.

    /// Goes on with these samples, as many as there are.
    void add(std::span<const qint16> samples);

    /// What has come so far; its last stretch may be of less than peakMS. Where speech is, is worked out here, which
    /// takes some milliseconds for each hour.
    Waveform waveform() const;

private:
    void endStretch();

    Waveform m_full;       ///< The parts that are full.
    Waveform::Part m_open; ///< The part that is being filled.
    qsizetype m_count = 0; ///< Stretches of it.
    int m_low = 0;         ///< Of the stretch that is being filled ...
    int m_high = 0;
    int m_samples = 0; ///< ... which has so many samples.
};
