// Title documents in process. Measured on 2 cores (Release, g++ 12), median of 7 repetitions, cues from Corpus::cues.
//
//   standalone                10k   4.7 ms (8.7 MB)    100k   56 ms (87 MB)
//   intoProject, bare clips   10k    11 ms (6.4 MB)
//   intoProject, full clips   10k    27 ms (7.0 MB)
//
// Of a project's time nearly all is libxml2 reading it: 4,000 clips of two levels in 1 MB cost 20 ms.

#include "bench/Corpus.h"
#include "core/files/Utf8Writer.h"
#include "fcp/FCPXML.h"

#include <benchmark/benchmark.h>

namespace {

void writeTo(benchmark::State &state, const TitleDocument &document)
{
    qsizetype size = 0;
    Utf8Writer out([&](QByteArrayView block) { size += block.size(); });
    document.write(out);
    state.counters["MB"] = double(size) / 1e6;
}

void standalone(benchmark::State &state)
{
    const QList<Subtitle> cues = Corpus::cues(state.range(0));
    for (auto _ : state)
        writeTo(state, FCPXML::convert(cues, std::nullopt, {}));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Everything from the project's bytes to the document's, for a project of 2,000 clips.
void intoProject(benchmark::State &state, Corpus::Clips clips)
{
    const QList<Subtitle> cues = Corpus::cues(state.range(0));
    const QByteArray base = Corpus::project(clips, state.range(0));
    for (auto _ : state) {
        XmlDocument document = FCPXML::document(base, QStringLiteral("/"));
        const Options options = FCPXML::settings({}, document);
        writeTo(state, FCPXML::convert(cues, std::move(document), options));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(standalone)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(intoProject, bareClips, Corpus::Clips::bare)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(intoProject, fullClips, Corpus::Clips::full)->Arg(10'000)->Unit(benchmark::kMillisecond);
