// How long a cancel takes to be felt: the work that goes on after Job::cancel(), by the worker's own processor time and
// by the clock, cancelled at ten places of each operation on the largest input it takes (for files of cues, a million;
// beyond that only memory sets a limit). The worst of the ten is told; 100 ms is the promise.

#include "app/model/Exports.h"
#include "app/model/Imports.h"
#include "bench/Corpus.h"
#include "core/Cancelled.h"
#include "core/Job.h"
#include "core/SRT.h"
#include "core/files/AtomicFile.h"
#include "fcp/FCPXML.h"
#include "store/LintoraSession.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <semaphore>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

using Operation = std::function<void(Job &)>;
using Clock = std::chrono::steady_clock;

constexpr qsizetype million = 1'000'000;
constexpr int places = 10;

double cpuMS(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) * 1'000 + double(time.tv_nsec) / 1e6;
}

void run(const Operation &operation, Job &job)
{
    try {
        operation(job);
    } catch (const Cancelled &) { // NOLINT(bugprone-empty-catch): as it should be
    } catch (const std::exception &error) {
        fprintf(stderr, "%s\n", error.what());
    }
}

struct Felt
{
    double cpu = 0; ///< Milliseconds of the worker's own from cancel() to its end.
    double wall = 0;
};

/// Cancels when the worker has used `after` milliseconds of its processor; nothing is felt when it ended before.
Felt cancelled(const Operation &operation, double after)
{
    Job job;
    double cpuAtEnd = 0;
    Clock::time_point end;
    std::atomic<bool> isOver = false;
    std::binary_semaphore mayGo(0); // whose clock is read must be there
    std::thread worker([&] {
        run(operation, job);
        cpuAtEnd = cpuMS(CLOCK_THREAD_CPUTIME_ID);
        end = Clock::now();
        isOver = true;
        mayGo.acquire();
    });
    clockid_t clock = 0;
    pthread_getcpuclockid(worker.native_handle(), &clock);
    while (cpuMS(clock) < after && !isOver)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const bool isLate = isOver;
    const double cpu = cpuMS(clock);
    const Clock::time_point begin = Clock::now();
    job.cancel();
    mayGo.release();
    worker.join();
    if (isLate)
        return {};
    return {.cpu = cpuAtEnd - cpu, .wall = std::chrono::duration<double, std::milli>(end - begin).count()};
}

void measure(benchmark::State &state, const Operation &operation)
{
    for (auto _ : state) {
        double whole = 0;
        std::thread([&] {
            Job job;
            run(operation, job);
            whole = cpuMS(CLOCK_THREAD_CPUTIME_ID);
        }).join();
        Felt worst;
        for (int place = 0; place < places; ++place) {
            const Felt felt = cancelled(operation, whole * 0.98 * place / places);
            worst = {.cpu = std::max(worst.cpu, felt.cpu), .wall = std::max(worst.wall, felt.wall)};
        }
        state.counters["whole_ms"] = whole;
        state.counters["worst_cpu_ms"] = worst.cpu;
        state.counters["worst_wall_ms"] = worst.wall;
    }
}

/// Files that stay for the whole run.
QString file(const QString &name, const QByteArray &bytes)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    AtomicFile target(path);
    target.write(bytes);
    target.commit();
    return path;
}

void importingSubtitles(benchmark::State &state)
{
    const QString path = file(u"in.srt"_s, Corpus::srt(million));
    measure(state, [&](Job &job) { Imports::readSubtitles(path, Options(), job); });
}

/// As many clips as 16 MiB hold.
QByteArray largestProject()
{
    QByteArray xml =
        "<fcpxml version='1.10'><resources><format id='f' frameDuration='1/25s' width='1920' height='1080'/>"
        "<asset id='a' start='0s' duration='900000s' hasAudio='1'><media-rep src='file:///m/a.mov'/></asset>"
        "</resources><project name='p'><sequence format='f' duration='900000s'><spine>";
    for (int i = 0; xml.size() < FCPXML::largestFile - 1'000; ++i)
        xml += "<gap offset='" + QByteArray::number(i) + "s' duration='1s'><marker start='0s' duration='1/25s'/></gap>";
    return xml + "</spine></sequence></project></fcpxml>";
}

void importingAProject(benchmark::State &state)
{
    const QString path = file(u"in.fcpxml"_s, largestProject());
    measure(state, [&](Job &job) { Imports::readTimeline(path, job); });
}

void openingASession(benchmark::State &state)
{
    LintoraSession session{.items = Corpus::cues(70'000)};
    session.previousItems = session.items;
    const QByteArray bytes = session.encoded();
    state.counters["MB"] = double(bytes.size()) / 1e6;
    const QString path = file(u"in.json"_s, bytes);
    measure(state, [&](Job &job) { LintoraSession::read(path, [&] { job.check(); }); });
}

void openingAStrangeSession(benchmark::State &state)
{
    QByteArray bytes = "{";
    for (int i = 0; bytes.size() < LintoraSession::sizeLimit - 20; ++i)
        bytes += '"' + QByteArray::number(i) + "\":0,";
    bytes += "\"0\":0}";
    const QString path = file(u"strange.json"_s, bytes);
    measure(state, [&](Job &job) { LintoraSession::read(path, [&] { job.check(); }); });
}

void exportingSubtitles(benchmark::State &state)
{
    const QList<Subtitle> cues = Corpus::cues(million);
    const QString path = file(u"out.srt"_s, {});
    measure(state, [&](Job &job) { Exports::writeSRT(path, cues, job); });
}

void exportingTitles(benchmark::State &state)
{
    const QList<Subtitle> cues = Corpus::cues(state.range(0));
    const QString path = file(u"out.fcpxml"_s, {});
    measure(state, [&](Job &job) { Exports::writeTitles(path, cues, Options(), std::nullopt, job); });
}

} // namespace

BENCHMARK(importingSubtitles)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(importingAProject)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(openingASession)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(openingAStrangeSession)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(exportingSubtitles)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(exportingTitles)->Arg(100'000)->Iterations(1)->Unit(benchmark::kMillisecond);
