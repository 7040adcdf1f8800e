#include "fcp/render/SoundLevels.h"

#include <algorithm>

SoundLevels::SoundLevels(const SpeechRanges::Peaks &peaks)
    : m_peaks(peaks)
    , m_quiet(SpeechRanges::silence)
{
    // How loud it is where it is loud: of what sounds, the twentieth that is loudest begins there.
    constexpr qsizetype loudest = 20;
    SpeechRanges::Peaks sounding = peaks;
    sounding.removeIf([](quint16 peak) { return peak <= SpeechRanges::silence; });
    if (sounding.isEmpty())
        return;
    const auto loud = sounding.begin() + (sounding.size() - 1) * (loudest - 1) / loudest;
    std::ranges::nth_element(sounding, loud);
    m_quiet = std::max(m_quiet, static_cast<quint16>(*loud / quieter));
}

bool SoundLevels::isSilent(qint64 startMS, qint64 endMS) const
{
    if (m_peaks.isEmpty())
        return false;
    const qint64 edge = std::clamp<qint64>((endMS - startMS - coreMS) / 2, 0, edgeMS);
    constexpr qint64 frame = SpeechRanges::frameMS;
    const qint64 count = m_peaks.size();
    const qint64 first = std::clamp<qint64>((startMS + edge) / frame, 0, count);
    const qint64 last = std::clamp<qint64>((endMS - edge + frame - 1) / frame, first, count);
    return std::all_of(m_peaks.begin() + first, m_peaks.begin() + last,
                       [this](quint16 peak) { return peak <= m_quiet; });
}
