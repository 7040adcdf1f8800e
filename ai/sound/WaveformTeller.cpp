#include "ai/sound/WaveformTeller.h"

#include <algorithm>

WaveformTeller::WaveformTeller(const Growth &growth)
    : m_growth(growth)
{
    m_clock.start();
}

void WaveformTeller::tell(const std::function<News()> &now)
{
    constexpr qint64 shortestMS = 100;
    constexpr qint64 restShare = 20; // times as long as telling took it rests
    const qint64 begin = m_clock.elapsed();
    if (begin < m_nextMS)
        return;
    m_growth(now());
    const qint64 end = m_clock.elapsed();
    m_nextMS = end + std::max(shortestMS, (end - begin) * restShare);
}
