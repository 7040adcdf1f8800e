// A script of 40,000 characters against three hours of heard words, a character each. Measured on 2 cores that
// were busy otherwise (Release, g++ 12), CPU time:
//
//   damaged    60 ms    (goal: 0.2 s)
//   foreign   455 ms    4 million cells at a time are worked out whole before a stretch is given up
//
// "damaged": 5 % of the words are missing, 5 % wrong, and 200 words were improvised. "foreign": nothing corresponds, so
// that no stretch is anchored. The goal is 0.2 s and 64 MB; `peakMB` is what the process grew by in a run. In a process
// of its own, with the reading of the recogniser's JSON and the writing of the SRT, the work takes 11 MiB
// (bench/script-timing-memory.sh: 35 MiB in all, 24 of which a script of one line takes too).

#include "core/ConversionError.h"
#include "core/timing/ScriptTiming.h"
#include "tests/support/Generator.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

struct Input
{
    QString script;
    QList<HeardWord> words;
};

qint64 peakKB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

Input input(bool isForeign)
{
    constexpr qsizetype characters = 40'000;
    constexpr qint64 wordMS = 270; // three hours
    Generator generator(5);
    Input made;
    qsizetype said = 0;
    qint64 now = 0;
    const auto hear = [&](const QString &text) {
        for (const QChar character : text) {
            now += wordMS;
            if (!generator.chance(5))
                made.words.append({.text = generator.chance(5) ? generator.speech(1, 1) : QString(character),
                                   .startMS = now - wordMS,
                                   .endMS = now});
        }
    };
    while (said < characters) {
        const QString line = generator.speech(6, 30);
        said += line.size();
        made.script += line + u'\n';
        hear(isForeign ? generator.speech(6, 30) : line);
    }
    hear(generator.speech(200, 200));
    return made;
}

void time(benchmark::State &state, bool isForeign)
{
    const Input made = input(isForeign);
    const qint64 before = peakKB();
    for ([[maybe_unused]] auto _ : state) {
        try {
            benchmark::DoNotOptimize(ScriptTiming::timed(made.script, made.words, {}, [] {}));
        } catch (const ConversionError &) {
            state.counters["refused"] = 1;
        }
    }
    state.counters["peakMB"] = double(peakKB() - before) / 1024;
}

BENCHMARK_CAPTURE(time, damaged, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(time, foreign, true)->Unit(benchmark::kMillisecond);

} // namespace
