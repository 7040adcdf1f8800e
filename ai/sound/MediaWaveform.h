#pragma once

#include "ai/sound/WaveformTeller.h"

#include <QString>

class LocalAIJob;
class WaveformCache;

/// The waveform of a recording, read while it is shown.
struct MediaWaveform
{
    Waveform waveform;
    QString notice = {}; ///< What a person must know of it, a sentence: the sound ends before the medium. Else empty.

    /// That of the first audio stream of the file at `path`: from `cache`, or read and kept there; null where it shall
    /// be read anyhow. `growth` hears of it while it is read, from the thread that reads. Blocks as long as it takes;
    /// memory grows by the waveform alone.
    /// @throws as MediaSamples::read, but not for the cache
    static MediaWaveform read(const QString &path, const WaveformCache *cache, LocalAIJob &job,
                              const WaveformTeller::Growth &growth);
};
