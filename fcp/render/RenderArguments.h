#pragma once

#include "fcp/audio/FCPAudioPlan.h"

#include <QStringList>

/// What the helper is asked in order to render a plan, without running it. All it makes is 16 kHz, mono, 16 bits.
namespace RenderArguments {

constexpr qsizetype largestBatch = 20; ///< Segments of one run: bounds the command line and the graph.
constexpr int sampleRate = 16'000;     ///< Samples a second of what is rendered.

/// The filter graph that brings the segments, the helper's inputs in this order, to their places and adds them up.
QString filterGraph(const QList<FCPAudioSegment> &segments);

/// The arguments that render `segments`, largestBatch at most, into the file `stem` of `duration` seconds.
QStringList stem(const QList<FCPAudioSegment> &segments, double duration, const QString &stem);

/// The arguments that add up several stems into the file `mix` of `duration` seconds.
QStringList mix(const QStringList &stems, double duration, const QString &mix);

} // namespace RenderArguments
