#pragma once

#include "fcp/render/SpeechRanges.h"

/// How loud a recording is from moment to moment, for who asks whether anybody can have spoken there.
class SoundLevels
{
public:
    SoundLevels() = default; ///< Of a recording that nobody has heard: nothing is known to be silent.
    explicit SoundLevels(const SpeechRanges::Peaks &peaks);

    /// Whether nothing sounds between two times, in milliseconds: nothing comes near to how loud the recording is where
    /// it is loud. What a neighbour's sound may reach into does not count. Silent is what lies beyond the recording.
    bool isSilent(qint64 startMS, qint64 endMS) const;

    static constexpr int quieter = 100;   ///< Times, 40 dB: quieter than that against the loud parts nobody speaks.
    static constexpr qint64 edgeMS = 200; ///< Of a stretch's ends, so much may be a neighbour's ...
    static constexpr qint64 coreMS = 200; ///< ... as long as at least so much is left.

private:
    SpeechRanges::Peaks m_peaks;
    quint16 m_quiet = 0; ///< Peaks up to this one are silence.
};
