// SRT in process. Measured on 2 cores (Release, g++ 12, glibc), median of 7 repetitions; the corpus is Corpus::srt.
//
//   cues                      1k      10k     100k       1M
//   plain loop                 -     0.98        -       51   ms
//   plain loop + strings       -     1.86        -       92   ms
//   decodeUtf8             0.189     1.96     22.2      287   ms
//   decodeCrLf                 -     2.37        -        -   ms, 1.21 times UTF-8
//   decodeUtf16                -     2.38        -        -   ms, 1.21 times UTF-8
//   serialize              0.103     1.14     10.3      107   ms
//
// So 10k cues take 1.05 times "plain loop + strings" and twice the plain loop; a cue takes 1.5 times as long at 1M as
// at 10k.
//
// "plain loop" finds lines and reads numbers without making strings; "+ strings" makes one QString a cue beside it. The
// goal is at most 1.5 times the latter, and to come near 4 times the former.

#include "bench/Corpus.h"
#include "core/SRT.h"
#include "core/files/Utf8Writer.h"

#include <QStringEncoder>

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

enum class Strings
{
    none,
    oneACue
};

/// What any reader must at least do: look at every line and read the digits of the time lines.
qint64 plainLoop(const QByteArray &text, Strings strings, QList<QString> &texts)
{
    qint64 sum = 0;
    const char *p = text.begin();
    const char *textBegin = nullptr;
    while (p != text.end()) {
        const auto *const feed = static_cast<const char *>(std::memchr(p, '\n', static_cast<size_t>(text.end() - p)));
        const char *const end = feed ? feed : text.end();
        if (end - p >= 29 && std::memcmp(p + 12, " --> ", 5) == 0) {
            for (const int digit : {0, 1, 3, 4, 6, 7, 9, 10, 11, 17, 18, 20, 21, 23, 24, 26, 27, 28})
                sum = sum * 10 % 1'000'000'007 + (p[digit] - '0');
            textBegin = end + 1;
        } else if (end == p && textBegin) {
            if (strings == Strings::oneACue)
                texts.append(QString::fromUtf8(textBegin, p - 1 - textBegin));
            textBegin = nullptr;
        }
        p = feed ? feed + 1 : end;
    }
    return sum;
}

void setCues(benchmark::State &state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void runPlainLoop(benchmark::State &state, Strings strings)
{
    const QByteArray text = Corpus::srt(state.range(0));
    for (auto _ : state) {
        QList<QString> texts;
        benchmark::DoNotOptimize(plainLoop(text, strings, texts));
        benchmark::DoNotOptimize(texts);
    }
    setCues(state);
}

void plainLoopAlone(benchmark::State &state)
{
    runPlainLoop(state, Strings::none);
}

void plainLoopWithStrings(benchmark::State &state)
{
    runPlainLoop(state, Strings::oneACue);
}

void runDecode(benchmark::State &state, const QByteArray &bytes)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(SRT::decode(bytes));
    setCues(state);
}

void decodeUtf8(benchmark::State &state)
{
    runDecode(state, Corpus::srt(state.range(0)));
}

void decodeCrLf(benchmark::State &state)
{
    runDecode(state, Corpus::srt(state.range(0)).replace("\n", "\r\n"));
}

void decodeUtf16(benchmark::State &state)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QByteArray bytes = encoder.encode(QString::fromUtf8(Corpus::srt(state.range(0))));
    runDecode(state, bytes);
}

void serialize(benchmark::State &state)
{
    const QList<Subtitle> cues = Corpus::cues(state.range(0));
    for (auto _ : state) {
        qsizetype size = 0;
        Utf8Writer out([&](QByteArrayView block) { size += block.size(); });
        SRT::serialize(cues, out);
        benchmark::DoNotOptimize(size);
    }
    setCues(state);
}

} // namespace

BENCHMARK(plainLoopAlone)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(plainLoopWithStrings)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeUtf8)->RangeMultiplier(10)->Range(1'000, 1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeCrLf)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeUtf16)->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK(serialize)->RangeMultiplier(10)->Range(1'000, 1'000'000)->Unit(benchmark::kMillisecond);
