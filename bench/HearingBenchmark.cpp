#include "app/Lintora/Panel.h"
#include "app/Lintora/sound/MediaLibrary.h"
#include "app/Lintora/sound/Player.h"
#include "app/Lintora/sound/StripView.h"
#include "app/model/Sound.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThreadPool>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

/// What an editor waits for who listens: the sound on the screen, the picture at a place, an end of it. Needs ffmpeg.
///
/// Measured on 2 cores at 2.6 GHz, others at work on them, in the optimised build; H.264 of 1920 × 1080 with a whole
/// picture every ten seconds, three hours of AAC:
/// - a drop to the first paint with peaks: median 0.14 s, longest of 20 0.19 s (with a display of Xvfb as without);
/// - a seek to the right picture: median 0.15 s, longest of 40 0.26 s; of twenty at once the last one after 0.30 s, and
///   one other was shown on the way;
/// - a cancel to the end of worker and helper: median 19 ms, longest of 20 26 ms;
/// - the first play stops the window for 26 ms. Not prepared ("unprepared" as the argument) it was 288 ms.
namespace {

using namespace Qt::StringLiterals;

constexpr int rate = 25; ///< Pictures a second.
constexpr int bits = 11; ///< Of a picture's number.
constexpr int filmSeconds = 60;

QTemporaryDir &folder()
{
    static QTemporaryDir made;
    return made;
}

QString path(const QString &name)
{
    return folder().filePath(name);
}

void waitFor(const std::function<bool()> &condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
}

void make(const QStringList &arguments)
{
    const QStringList quietly{u"-nostdin"_s, u"-loglevel"_s, u"error"_s};
    if (QProcess::execute(u"ffmpeg"_s, quietly + arguments) != 0)
        qFatal("ffmpeg cannot make what is to be played");
}

/// Pictures of 1920 × 1080 whose numbers are stripes, the lowest bit to the left, a whole one every ten seconds; and
/// three hours of a voice that pauses.
void makeMedia()
{
    const QString stripes = u"nullsrc=s=%1x90:r=%2:d=%3,geq=lum='if(mod(floor(N/pow(2,floor(X/16))),2),235,16)':"
                            "cb=128:cr=128,scale=1920:1080:flags=neighbor"_s.arg(16 * bits)
                                .arg(rate)
                                .arg(filmSeconds);
    make({u"-f"_s, u"lavfi"_s, u"-i"_s, stripes, u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=440:d=%1"_s.arg(filmSeconds),
          u"-pix_fmt"_s, u"yuv420p"_s, u"-preset"_s, u"ultrafast"_s, u"-g"_s, u"250"_s, path(u"film.mp4"_s)});
    make({u"-f"_s, u"lavfi"_s, u"-i"_s, u"anoisesrc=a=0.3:r=48000:d=60"_s, u"-af"_s,
          u"volume='if(lt(mod(t,3),2),1,0.001)':eval=frame"_s, u"-ac"_s, u"2"_s, path(u"minute.m4a"_s)});
    QFile list(path(u"list"_s));
    if (!list.open(QIODevice::WriteOnly))
        qFatal("no place for a list");
    constexpr int minutes = 180;
    for (int i = 0; i < minutes; ++i)
        list.write("file minute.m4a\n");
    list.close();
    make({u"-f"_s, u"concat"_s, u"-i"_s, list.fileName(), u"-c"_s, u"copy"_s, path(u"hours.m4a"_s)});
}

void report(benchmark::State &state, std::vector<double> times)
{
    std::ranges::sort(times);
    state.counters["median_ms"] = times[times.size() / 2];
    state.counters["longest_ms"] = times.back();
}

double elapsed(const QElapsedTimer &clock)
{
    return double(clock.nsecsElapsed()) / 1e6;
}

int numberOf(const QImage &picture)
{
    int number = 0;
    for (int bit = 0; bit < bits; ++bit) {
        if (qGray(picture.pixel((2 * bit + 1) * picture.width() / (2 * bits), picture.height() / 2)) > 128)
            number |= 1 << bit;
    }
    return number;
}

/// What the first play stops the window for. The argument: whether it was prepared. Only what runs first is true.
void firstPlay(benchmark::State &state)
{
    if (state.range(0) != 0) {
        MediaLibrary::prepare();
        QThreadPool::globalInstance()->waitForDone();
    }
    for (auto _ : state) {
        Player player;
        player.setFile(path(u"film.mp4"_s));
        double longest = 0;
        bool isSeen = false;
        QObject::connect(&player, &Player::framed, [&](const QImage &picture) { isSeen = !picture.isNull(); });
        QElapsedTimer clock;
        clock.start();
        player.play();
        longest = elapsed(clock);
        while (!isSeen) {
            QElapsedTimer event;
            event.start();
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            longest = std::max(longest, elapsed(event));
        }
        state.counters["longest_stop_ms"] = longest;
        state.counters["first_picture_ms"] = elapsed(clock);
    }
}

/// From the wish to the right picture. The argument: how many wishes come at once, of which the last one counts.
void seek(benchmark::State &state)
{
    Player player;
    int shown = -1;
    int pictures = 0;
    QObject::connect(&player, &Player::framed, [&](const QImage &picture) {
        shown = picture.isNull() ? -1 : numberOf(picture);
        ++pictures;
    });
    player.setFile(path(u"film.mp4"_s));
    player.seek(1'000);
    waitFor([&] { return shown == rate; });
    std::mt19937 random(20);
    std::vector<double> times;
    pictures = 0;
    for (auto _ : state) {
        int number = 0;
        QElapsedTimer clock;
        clock.start();
        for (int64_t i = 0; i < state.range(0); ++i) {
            number = std::uniform_int_distribution(0, filmSeconds * rate - 2)(random);
            player.seek(qint64(number) * 1'000 / rate + 5);
        }
        waitFor([&] { return shown == number; });
        times.push_back(elapsed(clock));
    }
    report(state, times);
    state.counters["pictures_each"] = double(pictures) / double(state.iterations());
}

/// Notes when the strip has been painted with a waveform.
class PaintWatch : public QObject
{
public:
    PaintWatch(QWidget &watched, const Sound &sound)
        : m_sound(sound)
    {
        watched.installEventFilter(this);
    }

    bool hasPainted = false;

protected:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        hasPainted = hasPainted || (event->type() == QEvent::Paint && !m_sound.waveform().isEmpty());
        return false;
    }

private:
    const Sound &m_sound;
};

/// The window with its strip.
class Window
{
public:
    Window()
        : m_model({.draftURL = path(u"Draft.json"_s),
                   .stylePresetsURL = path(u"Presets.json"_s),
                   .settings = std::make_shared<QSettings>(path(u"settings.ini"_s), QSettings::IniFormat)})
        , m_panel(m_model)
    {
        m_model.window().setStripShown(true);
        m_panel.resize(640, 790);
        m_panel.show();
        QFile cues(path(u"cues.srt"_s));
        if (!cues.open(QIODevice::WriteOnly) || cues.write("1\n00:00:01,000 --> 00:00:02,000\n好\n") < 0)
            qFatal("no place for cues");
        cues.close();
        m_model.load(QUrl::fromLocalFile(cues.fileName()));
        waitFor([&] { return !m_model.items().isEmpty() && strip().isVisible(); });
    }

    void drop(const QString &file)
    {
        QDir(path(u"Library/Caches"_s)).removeRecursively(); // where it would be known
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(file)});
        m_model.receive(mime);
    }

    Sound &sound() { return m_model.sound(); }
    StripView &strip() { return *m_panel.findChild<StripView *>(); }

    void forget()
    {
        m_model.recognition().setMedia({});
        sound().task().wait();
        QCoreApplication::processEvents();
    }

private:
    LintoraModel m_model;
    LintoraPanel m_panel;
};

/// From the drop of three hours to the first paint with some of them.
void firstPeaks(benchmark::State &state)
{
    Window window;
    std::vector<double> times;
    for (auto _ : state) {
        PaintWatch watch(window.strip(), window.sound());
        QElapsedTimer clock;
        clock.start();
        window.drop(path(u"hours.m4a"_s));
        waitFor([&] { return watch.hasPainted; });
        times.push_back(elapsed(clock));
        window.forget();
    }
    report(state, times);
}

/// From the cancel to the end of worker and helper.
void cancelReading(benchmark::State &state)
{
    Window window;
    std::vector<double> times;
    for (auto _ : state) {
        window.drop(path(u"hours.m4a"_s));
        waitFor([&] { return !window.sound().waveform().isEmpty(); });
        QElapsedTimer clock;
        clock.start();
        window.sound().task().cancel();
        window.sound().task().wait();
        times.push_back(elapsed(clock));
        window.forget();
    }
    report(state, times);
}

BENCHMARK(firstPlay)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(seek)->Arg(1)->Iterations(40)->Unit(benchmark::kMillisecond);
BENCHMARK(seek)->Arg(20)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(firstPeaks)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(cancelReading)->Iterations(20)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    for (const auto &[name, value] : {std::pair("QT_QPA_PLATFORM", "offscreen"), {"QT_MEDIA_BACKEND", "gstreamer"}}) {
        if (!qEnvironmentVariableIsSet(name))
            qputenv(name, value);
    }
    qputenv("HOME", QFile::encodeName(folder().path()));
    qputenv("VELMORA_SUBTITLE_HELPERS", QFile::encodeName(path(u"AI"_s)));
    QDir().mkdir(path(u"AI"_s));
    QFile::link(QStandardPaths::findExecutable(u"ffmpeg"_s), path(u"AI/ffmpeg-audio"_s));
    const QApplication application(argc, argv);
    makeMedia();
    if (argc > 1 && QByteArrayView(argv[1]) == "unprepared") {
        benchmark::RegisterBenchmark("firstPlay", firstPlay)->Arg(0)->Iterations(1);
        benchmark::RunSpecifiedBenchmarks("firstPlay/0");
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
