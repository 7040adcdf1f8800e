#include "app/Lintora/CueTable.h"
#include "app/Lintora/Panel.h"
#include "app/LintoraModel.h"
#include "bench/Corpus.h"

#include <QApplication>
#include <QFile>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <functional>
#include <vector>

/// What a person waits for in the real panel, off the screen: from the event until the changed window is painted.
///
/// Each row names the median of the main thread's own time, and what 99 of 100 stay under, in milliseconds: other
/// programs on the machine do not count.
namespace {

using namespace Qt::StringLiterals;

/// A panel at its usual size with two tracks of so many cues.
class Window
{
public:
    explicit Window(qsizetype cues)
        : m_model({.draftURL = m_folder.filePath(u"Draft.json"_s),
                   .stylePresetsURL = m_folder.filePath(u"Presets.json"_s),
                   .settings = std::make_shared<QSettings>(m_folder.filePath(u"settings.ini"_s), QSettings::IniFormat)})
        , m_panel(m_model)
    {
        m_panel.resize(640, 790);
        m_panel.show();
        m_panel.activateWindow();
        paint();
        const QList<Subtitle> items = Corpus::cues(cues);
        m_job.tracks = QList<SubtitleTrack>{{.id = QUuid::createUuid(), .label = u"中文"_s, .items = items},
                                            {.id = QUuid::createUuid(), .label = u"English"_s, .items = items}};
        m_job.selectedTrackID = m_job.tracks->first().id;
    }

    LintoraModel &model() { return m_model; }
    CueTable &table() { return m_panel.table(); }

    void open()
    {
        m_model.apply(m_job);
        paint();
    }

    void close()
    {
        m_model.apply({});
        paint();
    }

    /// Lets everything happen that the last event led to, painting included.
    static void paint()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }

    QLineEdit *field(const QString &name)
    {
        for (QLineEdit *const each : m_panel.findChildren<QLineEdit *>()) {
            if (each->accessibleName() == name)
                return each;
        }
        return nullptr;
    }

private:
    QTemporaryDir m_folder;
    LintoraModel m_model;
    LintoraPanel m_panel;
    LintoraSession m_job;
};

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

/// Measures `act` again and again; `prepare` comes before each, unmeasured.
void measure(
    benchmark::State &state, const std::function<void(int)> &act, const std::function<void(int)> &prepare = [](int) {})
{
    std::vector<double> times;
    int round = 0;
    for (auto _ : state) {
        prepare(round);
        const double start = threadSeconds();
        act(round);
        const double seconds = threadSeconds() - start;
        state.SetIterationTime(seconds);
        times.push_back(seconds * 1e3);
        ++round;
    }
    std::ranges::sort(times);
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["p99_ms"] = times[std::min(times.size() - 1, times.size() * 99 / 100)];
}

void type(const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
}

/// From the cues' arrival until they are seen.
void open(benchmark::State &state)
{
    Window window(state.range(0));
    measure(
        state, [&](int) { window.open(); }, [&](int) { window.close(); });
}
BENCHMARK(open)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void scroll(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    QScrollBar &bar = *window.table().verticalScrollBar();
    measure(state, [&](int round) {
        bar.setValue(int((qint64(round) * 7919 * 28) % bar.maximum()));
        Window::paint();
    });
}
BENCHMARK(scroll)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(500);

/// One character typed into the editor of a cue.
void typing(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    window.table().editText(5'000);
    Window::paint();
    measure(
        state,
        [&](int) {
            type(u"字"_s);
            Window::paint();
        },
        [&](int round) {
            if (round % 20 == 0) {
                window.table().commitEdit();
                window.table().editText(5'000 + round);
                Window::paint();
            }
        });
}
BENCHMARK(typing)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(500);

/// From Return until the row, the inspector and its picture show the new text.
void commit(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    measure(
        state,
        [&](int) {
            window.table().commitEdit();
            Window::paint();
        },
        [&](int round) {
            window.table().editText(1'000 + round);
            type(u"改动 %1"_s.arg(round));
            Window::paint();
        });
}
BENCHMARK(commit)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void splitting(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    measure(
        state,
        [&](int) {
            window.table().splitCue();
            Window::paint();
        },
        [&](int round) {
            window.table().goTo(100 + 7 * round);
            Window::paint();
        });
}
BENCHMARK(splitting)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void nextCue(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    measure(state, [&](int round) {
        window.table().goTo(1'000 + round);
        Window::paint();
    });
}
BENCHMARK(nextCue)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(500);

void changeTab(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    measure(state, [&](int round) {
        window.model().selectTrack(window.model().tracks().at(1 - round % 2).id);
        Window::paint();
    });
}
BENCHMARK(changeTab)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

/// One character more in the field above the table.
void filter(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    const QString texts[] = {u"的"_s, u"的时"_s, u"的"_s, u""_s};
    measure(state, [&](int round) {
        window.table().setFilter(texts[round % 4]);
        Window::paint();
    });
}
BENCHMARK(filter)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

/// One character more of the keyword, with the preview of all cues that hold it.
void preview(benchmark::State &state)
{
    Window window(state.range(0));
    window.open();
    window.model().setFindReplaceVisible(true);
    QLineEdit *const query = window.field(u"关键词"_s);
    const QString texts[] = {u"的"_s, u"的时"_s, u""_s};
    measure(state, [&](int round) {
        query->setText(texts[round % 3]);
        Window::paint();
    });
}
BENCHMARK(preview)->Arg(10'000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

/// Memory of the process with the window painted.
void memory(benchmark::State &state)
{
    Window window(state.range(0));
    for (auto _ : state)
        window.open();
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            state.counters["resident_MB"] = line.mid(6).simplified().split(' ').first().toDouble() / 1024;
    }
}
BENCHMARK(memory)->Arg(10'000)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
