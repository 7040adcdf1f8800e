// Separation of bilingual cues. Measured on 2 cores (Release, g++ 12, glibc), CPU time, median of 5:
//
//             10,000 cues   100,000 cues
//   split         2.9 ms          60 ms
//   copy          1.3 ms          43 ms
//
// Each cue has a Chinese line of 2 to 20 characters and an English line of 31; every tenth has a line of digits. "copy"
// makes the strings that any separation has to make, without looking at a character.

#include "bench/Corpus.h"
#include "core/text/LanguageSeparation.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> bilingualCues(qsizetype count)
{
    QList<Subtitle> cues = Corpus::cues(count);
    for (Subtitle &cue : cues)
        cue.text += (cue.id % 10 == 0 ? u"\n2024"_s : QString()) + u"\nThis is what was said in English"_s;
    return cues;
}

void split(benchmark::State &state)
{
    const QList<Subtitle> cues = bilingualCues(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(LanguageSeparation::split(cues));
}

void copy(benchmark::State &state)
{
    const QList<Subtitle> cues = bilingualCues(state.range(0));
    for (auto _ : state) {
        QList<Subtitle> copies[2];
        for (const Subtitle &cue : cues) {
            const qsizetype feed = cue.text.indexOf(u'\n');
            copies[0].append({.id = cue.id, .start = cue.start, .end = cue.end, .text = cue.text.first(feed)});
            copies[1].append({.id = cue.id, .start = cue.start, .end = cue.end, .text = cue.text.sliced(feed + 1)});
        }
        benchmark::DoNotOptimize(copies);
    }
}

} // namespace

BENCHMARK(split)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(copy)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
