// Whole commands from file to file: CPU time and peak memory of the child process, in turn with ffmpeg -c copy of the
// same SRT, which stands for what a fast tool takes. Measured on 2 cores (Release), median of 7 repetitions; files are
// Corpus::srt.
//
//   cues                          10k            100k             1M
//   ffmpeg -c copy             122 ms          534 ms         4117 ms   508 MB
//   srt                         12 ms 0.10x     67 ms 0.13x    605 ms 0.15x, 183 MB: 2.4 times the file
//   titles                      21 ms 0.17x    152 ms 0.28x
//   titles, 2,000 bare clips    35 ms, 1.6 times a standalone document
//   titles, 2,000 full clips    65 ms, 3.1 times
//   --version                  4.4 ms, of which starting Qt and ICU is nearly all
//
// CPU time and not the clock: the machines are shared, and the output is synced to the disk.

#include "bench/Corpus.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

extern char **environ;

using namespace Qt::StringLiterals;

namespace {

struct Cost
{
    double cpuSeconds = 0;
    double peakMegabytes = 0;
    int status = -1;
};

Cost run(const std::vector<QByteArray> &command)
{
    std::vector<char *> arguments;
    for (const QByteArray &word : command)
        arguments.push_back(const_cast<char *>(word.constData())); // NOLINT: posix_spawn does not write to them
    arguments.push_back(nullptr);
    pid_t process = 0;
    Cost cost;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        return cost;
    struct rusage usage = {};
    wait4(process, &cost.status, 0, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    cost.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    cost.peakMegabytes = double(usage.ru_maxrss) / 1e3;
    return cost;
}

const QTemporaryDir &folder()
{
    static const QTemporaryDir folder;
    return folder;
}

QByteArray corpusFile(qsizetype cues)
{
    const QString path = folder().filePath(u"%1.srt"_s.arg(cues));
    // Made in a process of its own: the peak memory of a child begins with that of the process that starts it.
    if (!QFile::exists(path)) {
        const pid_t maker = fork();
        if (maker == 0) {
            QFile file(path);
            const bool written = file.open(QIODevice::WriteOnly) && file.write(Corpus::srt(cues)) > 0 && file.flush();
            _exit(written ? 0 : 1);
        }
        waitpid(maker, nullptr, 0);
    }
    return QFile::encodeName(path);
}

void measure(benchmark::State &state, const std::vector<QByteArray> &command)
{
    Cost cost;
    for (auto _ : state) {
        cost = run(command);
        if (cost.status != 0)
            state.SkipWithError("the command failed or is not installed");
        state.SetIterationTime(cost.cpuSeconds);
    }
    state.counters["peakMB"] = cost.peakMegabytes;
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

QByteArray output(const char *name)
{
    return QFile::encodeName(folder().filePath(QString::fromLatin1(name)));
}

void ffmpegCopy(benchmark::State &state)
{
    measure(state, {"ffmpeg", "-v", "error", "-y", "-i", corpusFile(state.range(0)), "-c", "copy", output("copy.srt")});
}

void srt(benchmark::State &state)
{
    measure(state, {LINTORA_CLI, "srt", corpusFile(state.range(0)), "-o", output("out.srt")});
}

void titles(benchmark::State &state)
{
    measure(state, {LINTORA_CLI, "titles", corpusFile(state.range(0)), "-o", output("out.fcpxml")});
}

void titlesIntoProject(benchmark::State &state, Corpus::Clips clips)
{
    const QByteArray base = output("base.fcpxml");
    QFile file(QFile::decodeName(base));
    if (!file.open(QIODevice::WriteOnly) || file.write(Corpus::project(clips, state.range(0))) < 0 || !file.flush())
        state.SkipWithError("the project cannot be written");
    measure(state, {LINTORA_CLI, "titles", corpusFile(state.range(0)), "--base", base, "-o", output("out.fcpxml")});
}

void nothing(benchmark::State &state)
{
    measure(state, {LINTORA_CLI, "--version"});
}

} // namespace

BENCHMARK(nothing)->Arg(0)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ffmpegCopy)->RangeMultiplier(10)->Range(10'000, 1'000'000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(srt)->RangeMultiplier(10)->Range(10'000, 1'000'000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(titlesIntoProject, bareClips, Corpus::Clips::bare)
    ->Arg(10'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(titlesIntoProject, fullClips, Corpus::Clips::full)
    ->Arg(10'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(titles)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);
