// One repaint of the timing strip, 1280 × 160 points, all of it: 10,000 cues over an hour of sound.
//
// Measured on 2 cores at 2.3 GHz, quiet: 0.65 ms at 1 ms a point, 1.5 ms at 100, 2.0 ms with all of the hour in sight.
// What is drawn hundreds of times must be opaque: see-through it took 48 ms.
#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/sound/StripPainter.h"
#include "core/sound/WaveformMaker.h"
#include "tests/support/Generator.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

constexpr QSize stripSize(1'280, 160);

/// An hour of a voice that pauses every few seconds.
Waveform hour()
{
    WaveformMaker maker;
    std::vector<qint16> second(size_t(WaveformMaker::samplesPerMS) * 1'000);
    Generator generator(7);
    for (int i = 0; i < 3'600; ++i) {
        const qint64 loud = i % 5 == 4 ? 40 : 9'000;
        for (qint16 &sample : second)
            sample = qint16(generator.number(-loud, loud));
        maker.add(second);
    }
    return maker.waveform();
}

QList<Subtitle> cuesOver(qsizetype count, qint64 lengthMS)
{
    QList<Subtitle> cues = Generator(3).cues(count);
    const double share = double(lengthMS) / double(cues.last().end);
    for (Subtitle &cue : cues) {
        cue.start = std::llround(double(cue.start) * share);
        cue.end = std::max(cue.start + 1, qint64(std::llround(double(cue.end) * share)));
    }
    return cues;
}

/// The argument: milliseconds a point takes.
void repaint(benchmark::State &state)
{
    static const Waveform waveform = hour();
    static const CueTimeline cues(cuesOver(10'000, waveform.lengthMS()));
    TimeScale scale;
    scale.setWidth(stripSize.width());
    scale.setLength(waveform.lengthMS());
    scale.zoom(scale.msPerPoint() / double(state.range(0)), 0);
    scale.centre(1'800'000, 1'801'000);
    QImage image(stripSize, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    for (auto _ : state) {
        StripPainter::paint(painter,
                            {.scale = scale,
                             .cues = cues,
                             .waveform = waveform,
                             .grid = {},
                             .current = 5'000,
                             .moved = {},
                             .newCue = {},
                             .playheadMS = 1'800'500},
                            stripSize, QRect({}, stripSize), VELTheme::colors(VELTheme::Appearance::light));
    }
}

/// What one edit costs: the cues along the timeline anew.
void follow(benchmark::State &state)
{
    const QList<Subtitle> cues = cuesOver(state.range(0), 3'600'000);
    for (auto _ : state)
        benchmark::DoNotOptimize(CueTimeline(cues).end());
}

BENCHMARK(repaint)->Arg(1)->Arg(4)->Arg(12)->Arg(100)->Arg(1'000)->Arg(3'000)->Unit(benchmark::kMillisecond);
BENCHMARK(follow)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
