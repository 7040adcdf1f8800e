// One side of a drag between two programs. Says on standard output what happens to it, a line each.
//
//   drag_peer card FOLDER X Y [LOSS]    a card of ours; its document goes to FOLDER/payload. While it is dragged, LOSS
//                                       ("card", "track" or "model") goes away
//   drag_peer sink FOLDER X Y           another program's target; what it gets goes to FOLDER/formats, FOLDER/0, …
//   drag_peer browser FOLDER X Y FILE   another program's source: an FCPXML document, or a link to any other file
//   drag_peer area FOLDER X Y           a place of ours to drop material
#include "app/Lintora/drag/DragSubtitleCard.h"
#include "app/Lintora/drag/UnifiedImportArea.h"
#include "app/model/FCPPasteboard.h"

#include <QApplication>
#include <QChildEvent>
#include <QDir>
#include <QDrag>
#include <QDropEvent>
#include <QMouseEvent>
#include <QPointer>
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

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %ls", qUtf16Printable(path));
}

QByteArray read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %ls", qUtf16Printable(path));
    return file.readAll();
}

std::unique_ptr<LintoraModel> makeModel(const QString &folder)
{
    auto model = std::make_unique<LintoraModel>(LintoraModel::Surroundings{
        .draftURL = folder + u"/Draft.json"_s,
        .stylePresetsURL = folder + u"/StylePresets.json"_s,
        .settings = std::make_shared<QSettings>(folder + u"/settings.ini"_s, QSettings::IniFormat)});
    QObject::connect(model.get(), &LintoraModel::messageChanged, qApp,
                     [model = model.get()] { say(u"message "_s + model->message()); });
    QObject::connect(model.get(), &LintoraModel::failureChanged, qApp,
                     [model = model.get()] { say(u"failure "_s + model->failure().value_or(u"none"_s)); });
    QObject::connect(model.get(), &LintoraModel::itemsChanged, qApp,
                     [model = model.get()] { say(u"cues %1"_s.arg(model->items().size())); });
    return model;
}

/// Another program's target.
class Sink : public QWidget
{
public:
    explicit Sink(const QString &folder)
        : m_folder(folder)
    {
        setAcceptDrops(true);
    }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override
    {
        event->acceptProposedAction();
        say(u"hovering"_s);
    }

    void dropEvent(QDropEvent *event) override
    {
        const QStringList formats = event->mimeData()->formats();
        write(m_folder + u"/formats"_s, (formats.join(u'\n') + u'\n').toUtf8());
        for (qsizetype i = 0; i < formats.size(); ++i)
            write(u"%1/%2"_s.arg(m_folder).arg(i), event->mimeData()->data(formats[i]));
        event->acceptProposedAction();
        say(u"dropped"_s);
    }

private:
    const QString m_folder;
};

/// Another program's source.
class Browser : public QWidget
{
public:
    explicit Browser(const QString &file)
        : m_file(file)
    {}

protected:
    void mouseMoveEvent(QMouseEvent *) override
    {
        auto *const drag = new QDrag(this);
        if (m_file.endsWith(u".fcpxml")) {
            drag->setMimeData(FCPPasteboard::offering(read(m_file)).release());
        } else {
            drag->setMimeData(new QMimeData);
            drag->mimeData()->setUrls({QUrl::fromLocalFile(m_file)});
        }
        say(u"Begin"_s);
        say(u"End: operation=%1"_s.arg(int(drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction))));
    }

private:
    const QString m_file;
};

/// The parts of a program of ours, each of which a drag has to outlive.
struct CardProgram
{
    std::unique_ptr<LintoraModel> model;
    QWidget window;
    std::unique_ptr<DragSubtitleCard> card;
    QTimer watch;

    void lose(const QString &what, const QString &other)
    {
        if (what == u"track")
            model->load(QUrl::fromLocalFile(other));
        if (what == u"card" || what == u"model")
            card.reset();
        if (what == u"model")
            model.reset();
        say(u"lost "_s + what);
    }
};

/// Says when the pointer has come and when its button has gone down, so that nobody has to guess.
class PointerWatch : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Enter)
            say(u"entered"_s);
        else if (event->type() == QEvent::MouseButtonPress)
            say(u"pressed"_s);
        return QObject::eventFilter(watched, event);
    }
};

/// Says what a drag would do where the pointer is. A button that is let go before the target has answered ends it
/// there.
class DragWatch : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ChildAdded) {
            const auto look = [child = QPointer(static_cast<QChildEvent *>(event)->child())] {
                if (const auto *const drag = qobject_cast<QDrag *>(child.data())) // by now it is a whole one
                    connect(drag, &QDrag::actionChanged, [](Qt::DropAction action) { say(u"would %1"_s.arg(action)); });
            };
            QMetaObject::invokeMethod(this, look, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }
};

void showAt(QWidget &widget, const QPoint &place)
{
    widget.setGeometry(QRect(place, QSize(280, 120)));
    widget.show();
    widget.windowHandle()->installEventFilter(new PointerWatch(&widget));
    auto *const poll = new QTimer(&widget);
    QObject::connect(poll, &QTimer::timeout, &widget, [&widget, poll] {
        if (!widget.windowHandle()->isExposed())
            return;
        poll->stop();
        const QPoint middle = widget.mapToGlobal(widget.rect().center());
        say(u"ready %1 %2"_s.arg(middle.x()).arg(middle.y()));
    });
    poll->start(5);
}

int runCard(const QString &folder, const QPoint &place, const QString &loss)
{
    CardProgram program;
    program.model = makeModel(folder);
    QObject::connect(program.model.get(), &LintoraModel::itemsChanged, &program.watch, [&] {
        if (program.card)
            return;
        write(folder + u"/payload"_s, program.model->payload(std::nullopt).value_or(QByteArray()));
        program.card =
            std::make_unique<DragSubtitleCard>(*program.model, program.model->selectedTrackID(), &program.window);
        program.card->setGeometry(0, 0, 280, 120);
        showAt(program.window, place);
    });
    QObject::connect(&program.watch, &QTimer::timeout, &program.watch, [&] {
        if (loss.isEmpty() || !program.model->window().subtitleDragInProgress)
            return;
        program.watch.stop();
        program.lose(loss, folder + u"/other.srt"_s);
    });
    program.watch.start(5);
    program.model->load(QUrl::fromLocalFile(folder + u"/cues.srt"_s));
    return QApplication::exec();
}

int runArea(const QString &folder, const QPoint &place)
{
    const auto model = makeModel(folder);
    UnifiedImportArea area(*model);
    QObject::connect(area.findChild<MaterialDrop *>(), &MaterialDrop::hoveringChanged, &area,
                     [] { say(u"hovering"_s); });
    showAt(area, place);
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    application.installEventFilter(new DragWatch(&application));
    const QStringList arguments = QApplication::arguments();
    const QString role = arguments.value(1);
    const QString folder = arguments.value(2);
    const QPoint place(arguments.value(3).toInt(), arguments.value(4).toInt());
    if (role == u"card")
        return runCard(folder, place, arguments.value(5));
    if (role == u"area")
        return runArea(folder, place);
    const std::unique_ptr<QWidget> widget = role == u"sink" ? std::unique_ptr<QWidget>(std::make_unique<Sink>(folder))
                                                            : std::make_unique<Browser>(arguments.value(5));
    showAt(*widget, place);
    return QApplication::exec();
}
