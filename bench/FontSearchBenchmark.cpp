// A search over 2,000 families, and what it is made of. Measured on 2 busy cores (Release, g++ 12): CPU time in ms, the
// median of 5 repetitions. The goal for a search is 2 ms; a frame has 16.
//
//   find, nothing typed       0.06        makeSearch        7.5    on the catalogue's thread
//   find, one letter          0.21        makeReader        0.2    once ICU is loaded; the first one: 106
//   find, initials            0.17        readAloud         1.3    all 2,000 Chinese names
//   find, pinyin              0.23        encodeIndex       1.0
//   find, Chinese             0.14        decodeIndex       4.5
//   find, English             0.20
//   find, no such family      0.24

#include "app/fonts/FontIndexFile.h"
#include "app/fonts/FontSearch.h"
#include "core/text/Pinyin.h"
#include "tests/app/fonts/SyntheticFonts.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype count = 2'000;

const QList<FontFamily> &families()
{
    static const QList<FontFamily> list = SyntheticFonts::families(count);
    return list;
}

void find(benchmark::State &state, const QString &query)
{
    const FontSearch search(families());
    const QStringList preferred{families()[7].family, families()[1'900].family};
    for (auto _ : state)
        benchmark::DoNotOptimize(search.find(query, preferred));
}

void makeSearch(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(FontSearch(families()));
}

void makeReader(benchmark::State &state)
{
    for (auto _ : state) {
        Pinyin::Reader reader;
        benchmark::DoNotOptimize(reader.read(u"思源黑体"));
    }
}

void readAloud(benchmark::State &state)
{
    for (auto _ : state) {
        Pinyin::Reader reader;
        for (const FontFamily &family : families())
            benchmark::DoNotOptimize(reader.read(family.chineseName));
    }
}

void encodeIndex(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(FontIndexFile::encode(families()));
}

void decodeIndex(benchmark::State &state)
{
    const QByteArray bytes = FontIndexFile::encode(families());
    for (auto _ : state)
        benchmark::DoNotOptimize(FontIndexFile::decode(bytes));
}

} // namespace

BENCHMARK_CAPTURE(find, everything, QString())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, oneLetter, u"s"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, initials, u"fzlt"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, pinyin, u"zhankukuaileti"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, chinese, u"行楷"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, english, u"great wall"_s)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find, nothing, u"helvetica"_s)->Unit(benchmark::kMillisecond);
BENCHMARK(makeSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(makeReader)->Unit(benchmark::kMillisecond);
BENCHMARK(readAloud)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeIndex)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeIndex)->Unit(benchmark::kMillisecond);
