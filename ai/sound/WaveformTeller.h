#pragma once

#include "core/sound/Waveform.h"

#include <QElapsedTimer>

#include <functional>
#include <optional>

/// Tells of a waveform as it grows: at once, then often, but not so often that making it would take longer by it.
class WaveformTeller
{
public:
    struct News
    {
        Waveform waveform;           ///< What has come so far ...
        std::optional<double> share; ///< ... and its share of the whole, 0 to 1, where that is known.
    };
    using Growth = std::function<void(const News &news)>;

    /// `growth` must live as long as this.
    explicit WaveformTeller(const Growth &growth);

    /// Tells of what `now` returns, if it is time to; otherwise it is not asked.
    void tell(const std::function<News()> &now);

private:
    const Growth &m_growth;
    QElapsedTimer m_clock;
    qint64 m_nextMS = 0;
};
