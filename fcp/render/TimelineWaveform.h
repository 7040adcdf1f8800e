#pragma once

#include "ai/sound/WaveformTeller.h"
#include "core/Progress.h"
#include "core/sound/WaveformCache.h"
#include "fcp/audio/FCPAudioPlan.h"

class LocalAIJob;

/// The waveform of a planned timeline's sound, made while that is rendered.
struct TimelineWaveform
{
    Waveform waveform;
    QString file; ///< The sound itself, as FCPAudioRenderer::render makes it.

    /// What it depends on: which pieces sound where and how loud, and their files' sizes and dates.
    static WaveformCache::Key key(const FCPAudioPlan &plan);

    /// Renders the sound into `directory` and keeps the waveform in `cache`. `growth` hears of what is there so far,
    /// from the thread that renders: while pieces come that sound together, how far they swing at most.
    /// @throws as FCPAudioRenderer::render, but not for the cache
    static TimelineWaveform render(const FCPAudioPlan &plan, const WaveformCache &cache, LocalAIJob &job,
                                   const QString &directory, const ProgressReport &progress,
                                   const WaveformTeller::Growth &growth);
};
