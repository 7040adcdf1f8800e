// Checks of a track. "look" looks through the texts, "try" then tries limits, as the window does while a person changes
// one; the whole of lintora-cli check is the sum. The cues are Chinese speech with English names and marks; one in five
// has something to find. Measured on 2 quiet cores (Release, g++ 12), CPU time at 10,000 cues: look 15 ms, another
// limit 1.6 ms.

#include "core/text/checks/CheckedCues.h"
#include "tests/support/Generator.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> spokenCues(qsizetype count)
{
    Generator generator(2024);
    QList<Subtitle> cues = generator.cues(count, 700);
    for (Subtitle &cue : cues)
        cue.text += generator.pick(QStringList{u"，好"_s, u"。"_s, u"iPhone"_s, u"20个"_s, u"Final Cut Pro"_s, u","_s,
                                               u" "_s, u"（笑）"_s, u"其它"_s});
    return cues;
}

void look(benchmark::State &state)
{
    const QList<Subtitle> cues = spokenCues(state.range(0));
    const CheckLimits limits = CheckLimits::builtIn().front();
    for (auto _ : state)
        benchmark::DoNotOptimize(CheckedCues(cues, limits.terms, [] {}));
}

void tryLimits(benchmark::State &state)
{
    CheckLimits limits = CheckLimits::builtIn().front();
    const CheckedCues cues(spokenCues(state.range(0)), limits.terms, [] {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(cues.findings(limits, {}, [] {}));
        limits.columns = limits.columns == 16 ? 12 : 16;
    }
}

} // namespace

BENCHMARK(look)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(tryLimits)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
