// Pictures of titles, and widths of cues. Measured on 2 busy cores (Release, g++ 12): CPU time in ms, the middle one of
// three medians of 5 repetitions. The canvas is kept between pictures; 96 points in a frame of 3840 × 2160.
//
//                     560 × 315      3840 × 2160
//   one line, 17 characters
//     plain                0.50              4.2
//     stroke               0.71              8.4
//     shadow               0.74              7.8
//     both                 0.67              9.0
//   two lines, 55 characters
//     plain                1.17              6.8
//     stroke               1.70             13.3
//     shadow               1.55             14.9
//     both                 1.70             17.3
//     both, drawOnce       2.16             17.9     font looked up, fresh memory
//
//   fillCanvas                               2.0     what every picture of this size begins with
//   measureTrack, 10,000 cues                1.1     with making the measure; each further asking costs less
//
// Before glyphs were drawn in pieces and strokes grown from their coverage, two lines with both took 21 and 198 ms.

#include "app/titles/TitleMeasure.h"
#include "app/titles/TitlePicture.h"
#include "bench/Corpus.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

enum Look
{
    plain = 0,
    stroke = 1,
    shadow = 2,
    strokeAndShadow = stroke | shadow,
};

Options styleOf(Look look, double fontSize)
{
    Options options;
    options.font = u"Noto Sans CJK SC"_s;
    options.fontSize = fontSize;
    options.strokeEnabled = look & stroke;
    options.strokeWidth = 4;
    options.shadowEnabled = look & shadow;
    options.shadowBlur = 12;
    return options;
}

const QString oneLine = u"大家好，欢迎回来，今天我们聊聊调色"_s;
const QString twoLines = u"大家好，欢迎回来，今天我们聊聊调色\nWelcome back, let's talk about grading"_s;

void drawTitle(benchmark::State &state, const QString &text, Look look)
{
    const Options options = styleOf(look, 96);
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(0) * 9 / 16));
    TitleMeasure measure(options);
    QImage canvas;
    for (auto _ : state) {
        TitlePicture::drawInto(canvas, text, options, size, {}, TitlePicture::Guides::none, measure);
        benchmark::DoNotOptimize(canvas.constBits());
    }
}

/// All from scratch, as for a single picture: the font is looked up and the memory is fresh.
void drawOnce(benchmark::State &state)
{
    const Options options = styleOf(strokeAndShadow, 96);
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(0) * 9 / 16));
    for (auto _ : state)
        benchmark::DoNotOptimize(TitlePicture::draw(twoLines, options, size, {}));
}

void fillCanvas(benchmark::State &state)
{
    QImage canvas(3840, 2160, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        TitleBackdrops::draw({}, canvas);
        benchmark::DoNotOptimize(canvas.constBits());
    }
}

void measureTrack(benchmark::State &state)
{
    const QList<Subtitle> cues = Corpus::cues(state.range(0));
    const Options options = styleOf(plain, 48);
    for (auto _ : state) {
        TitleMeasure measure(options);
        qsizetype wide = 0;
        for (const Subtitle &cue : cues)
            wide += measure.isWiderThanSafe(cue.text) ? 1 : 0;
        benchmark::DoNotOptimize(wide);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK_CAPTURE(drawTitle, oneLine_plain, oneLine, plain)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, oneLine_stroke, oneLine, stroke)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, oneLine_shadow, oneLine, shadow)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, oneLine_both, oneLine, strokeAndShadow)
    ->Arg(560)
    ->Arg(3840)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, twoLines_plain, twoLines, plain)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, twoLines_stroke, twoLines, stroke)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, twoLines_shadow, twoLines, shadow)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(drawTitle, twoLines_both, twoLines, strokeAndShadow)
    ->Arg(560)
    ->Arg(3840)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(drawOnce)->Arg(560)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK(fillCanvas)->Unit(benchmark::kMillisecond);
BENCHMARK(measureTrack)->Arg(10'000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
