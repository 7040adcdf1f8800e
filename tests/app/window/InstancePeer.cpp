// A launch of the program as far as SingleInstance goes: says on standard output what it became and what it was handed.
//
//   instance_peer PATIENCE LINK…     runs until standard input ends when it is the first
#include "app/window/SingleInstance.h"
#include "core/ConversionError.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace Qt::StringLiterals;
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    SingleInstance instance(std::chrono::milliseconds(arguments.value(0).toInt()));
    QObject::connect(&instance, &SingleInstance::received, &instance, [](const QList<QUrl> &urls) {
        for (const QUrl &url : urls)
            say(url.toString());
        say(u"received %1"_s.arg(urls.size()));
    });
    QList<QUrl> urls;
    for (const QString &link : arguments.mid(1))
        urls += QUrl(link);
    try {
        if (instance.launch(urls) == SingleInstance::Launch::handedOver) {
            say(u"handed over"_s);
            return 0;
        }
    } catch (const ConversionError &error) {
        say(error.message());
        return 1;
    }
    say(u"first"_s);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
