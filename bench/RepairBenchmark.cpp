// Opening files that the strict reader refuses. "broken" is an SRT with dots in the times, missing numbers and short
// milliseconds; "foreign" the same cues in order in GB18030, which costs the guess of the encoding; "strict" reads the
// cues in order, for comparison.

#include "core/SRT.h"
#include "core/repair/SubtitleRepair.h"
#include "tests/support/Generator.h"

#include <benchmark/benchmark.h>

#include <unicode/ucnv.h>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> spokenCues(qsizetype count)
{
    return Generator(2024).cues(count, 700);
}

QByteArray broken(qsizetype count)
{
    QByteArray bytes;
    for (const QByteArray &line : SRT::serialize(spokenCues(count)).toUtf8().split('\n')) {
        if (line.contains("-->"))
            bytes += QByteArray(line).replace(',', '.').replace(" -->", "-->") + '\n';
        else if (line.size() > 3 || !line.endsWith('7'))
            bytes += line + '\n';
    }
    return bytes;
}

QByteArray inChinese(const QByteArray &utf8)
{
    UErrorCode status = U_ZERO_ERROR;
    QByteArray bytes(2 * utf8.size(), Qt::Uninitialized);
    const int32_t size = ucnv_convert("GB18030", "UTF-8", bytes.data(), int32_t(bytes.size()), utf8.constData(),
                                      int32_t(utf8.size()), &status);
    bytes.truncate(size);
    return bytes;
}

void repair(benchmark::State &state, const QByteArray &bytes)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(SubtitleRepair::read(bytes, {}, [] {}));
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}

void brokenFile(benchmark::State &state)
{
    repair(state, broken(state.range(0)));
}

void foreignFile(benchmark::State &state)
{
    repair(state, inChinese(SRT::serialize(spokenCues(state.range(0))).toUtf8()));
}

void strict(benchmark::State &state)
{
    const QByteArray bytes = SRT::serialize(spokenCues(state.range(0))).toUtf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(SRT::decode(bytes));
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}

} // namespace

BENCHMARK(brokenFile)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(foreignFile)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(strict)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
