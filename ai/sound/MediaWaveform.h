#pragma once

#include "core/sound/Waveform.h"

#include <QString>

#include <functional>
#include <optional>

class LocalAIJob;
class WaveformCache;

/// The waveform of a recording, read while it is shown.
struct MediaWaveform
{
    Waveform waveform;
    QString notice =
        {}; ///< What a person must know of it, a sentence; empty: nothing. The sound ends before the medium.

    /// Is told of what has been read so far, and of its share of the whole, 0 to 1, where that is known. From the
    /// thread that reads: at once, then some times a second.
    using Growth = std::function<void(const Waveform &waveform, std::optional<double> share)>;

    /// That of the first audio stream of the file at `path`: from `cache`, or read and kept there; null
    /// where it shall be read anyhow. Blocks as long as it
    /// takes; memory grows by the waveform alone.
    /// @throws as MediaSamples::read, but not for the cache
    static MediaWaveform read(const QString &path, const WaveformCache *cache, LocalAIJob &job, const Growth &growth);
};
