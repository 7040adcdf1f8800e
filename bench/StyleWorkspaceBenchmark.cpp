// What a person waits for in the style workspace, off the screen: from the event until the changed window is painted.
// Measured in Release on 2 cores at 2.3 GHz, quiet, in ms of processor time, a cue in stroke and shadow in a session of
// 10,000. All but a fifth to a third of a step of the drag is the panel behind the workspace.
//
//   dragSize, 640 × 790     10.5
//   dragSize, 1200 × 900    13.4
//   openFont                 1.4     one of the fonts of the list, the first time
//   reopen                   7.8

#include "app/Lintora/Panel.h"
#include "app/Lintora/look/FontSamples.h"
#include "app/model/LintoraModel.h"
#include "bench/Corpus.h"

#include <QApplication>
#include <QFontDatabase>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

/// Lets everything happen that the last event led to, painting included.
void paint()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

/// The open workspace over the panel with a session of 10,000 cues.
class Window
{
public:
    explicit Window(QSize size)
    {
        m_panel.resize(size);
        m_panel.show();
        LintoraSession job;
        job.tracks = QList<SubtitleTrack>{
            {.id = QUuid::createUuid(), .label = u"中文"_s, .items = Corpus::cues(10'000), .options = style()}};
        m_model.apply(job);
        paint();
        m_model.window().setSettingsVisible(true);
        paint();
    }

    LintoraModel &model() { return m_model; }

    static Options style()
    {
        Options options;
        options.font = u"Noto Sans CJK SC"_s;
        options.fontSize = 96;
        options.strokeEnabled = true;
        options.shadowEnabled = true;
        options.shadowBlur = 12;
        return options;
    }

private:
    QTemporaryDir m_folder;
    LintoraModel m_model{
        {.draftURL = m_folder.filePath(u"Draft.json"_s),
         .stylePresetsURL = m_folder.filePath(u"Presets.json"_s),
         .settings = std::make_shared<QSettings>(m_folder.filePath(u"settings.ini"_s), QSettings::IniFormat)}};
    LintoraPanel m_panel{m_model};
};

/// A slider on its way: the record changes, the controls and the picture follow.
void dragSize(benchmark::State &state)
{
    Window window(QSize(int(state.range(0)), int(state.range(1))));
    window.model().beginGesture();
    double size = 60;
    for (auto _ : state) {
        Options options = window.model().options();
        options.fontSize = size = size < 120 ? size + 1 : 60;
        window.model().setOptions(options);
        paint();
    }
    window.model().endGesture();
}
BENCHMARK(dragSize)->Args({640, 790})->Args({1200, 900})->Unit(benchmark::kMillisecond);

/// One family's name in its own face, the first time: what is done between two events while the list is scrolled.
void openFont(benchmark::State &state)
{
    const QStringList families = QFontDatabase::families();
    qsizetype next = 0;
    FontSamples samples;
    for (auto _ : state) {
        const QString family = families.at(next++ % families.size());
        bool isDrawn = false;
        const auto drawn = QObject::connect(&samples, &FontSamples::drawn, &samples, [&] { isDrawn = true; });
        samples.sample(family, family, {.pixels = 18, .color = QColor::fromHsv(int(next % 360), 255, 128)});
        while (!isDrawn)
            QCoreApplication::processEvents();
        QObject::disconnect(drawn);
    }
}
BENCHMARK(openFont)->Iterations(20)->Unit(benchmark::kMillisecond);

void reopen(benchmark::State &state)
{
    Window window(QSize(640, 790));
    for (auto _ : state) {
        window.model().window().setSettingsVisible(false);
        paint();
        window.model().window().setSettingsVisible(true);
        paint();
    }
}
BENCHMARK(reopen)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home; // Font names are kept there.
    qputenv("HOME", home.path().toLocal8Bit());
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
