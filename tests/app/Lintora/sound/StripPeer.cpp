// The window with a strip, for a mouse of the system. Says on standard output what happens to it, a line each.
//
//   strip_peer FOLDER FILE.srt    the cues of FILE, ten seconds of which are seen
//
// It begins with "x MS PLACE" for every tenth of a second, "y PLACE" for the middle of the sound, in points of the
// screen, and "ready".
#include "app/Lintora/Panel.h"
#include "app/Lintora/sound/StripPainter.h"
#include "app/Lintora/sound/StripView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSettings>
#include <QTextStream>
#include <QTimer>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

QString times(const LintoraModel &model)
{
    QStringList times;
    for (const Subtitle &cue : model.items())
        times += u"%1-%2"_s.arg(cue.start).arg(cue.end);
    return times.join(u' ');
}

/// Says what the pointer does on the strip, so that nobody has to guess.
class PointerWatch : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress)
            say(u"pressed"_s);
        else if (event->type() == QEvent::MouseButtonRelease)
            QTimer::singleShot(0, this, [] { say(u"let go"_s); });
        else if (event->type() == QEvent::MouseMove)
            say(u"moved %1"_s.arg(static_cast<const QMouseEvent *>(event)->globalPosition().x()));
        else if (event->type() == QEvent::FocusIn)
            say(u"has the keyboard"_s);
        return QObject::eventFilter(watched, event);
    }
};

void tellPlaces(const StripView &view)
{
    constexpr qint64 tenth = 100;
    for (qint64 ms = 0; ms <= TimeScale::shortestMS; ms += tenth)
        say(u"x %1 %2"_s.arg(ms).arg(view.mapToGlobal(QPoint(qRound(view.scale().x(ms)), 0)).x()));
    say(u"y %1"_s.arg(view.mapToGlobal(QPoint(0, (view.height() + StripPainter::rulerHeight) / 2)).y()));
    say(u"ready"_s);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QString folder = application.arguments().at(1);
    LintoraModel model({.draftURL = folder + u"/Draft.json"_s,
                        .stylePresetsURL = folder + u"/StylePresets.json"_s,
                        .settings = std::make_shared<QSettings>(folder + u"/settings.ini"_s, QSettings::IniFormat)});
    model.window().setStripShown(true);
    LintoraPanel panel(model);
    panel.setGeometry(0, 0, 640, 790);
    auto *const view = panel.findChild<StripView *>();
    view->installEventFilter(new PointerWatch(view));
    QObject::connect(&model, &LintoraModel::itemsChanged, view, [&] { say(u"times "_s + times(model)); });
    panel.show();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, view, [&] {
        const bool isSeen = view->isVisible() && panel.windowHandle()->isExposed();
        if (!isSeen || model.items().isEmpty() || view->scale().width() != view->width())
            return;
        poll.stop();
        view->zoom(0.01); // out: nothing scrolls any more
        tellPlaces(*view);
    });
    poll.start(5);
    model.load(QUrl::fromLocalFile(application.arguments().at(2)));
    return QApplication::exec();
}
