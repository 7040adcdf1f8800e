#include "app/window/LintoraContainer.h"

#include "app/platform/Platform.h"
#include "app/window/SingleInstance.h"
#include "core/ConversionError.h"
#include "core/Translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QTextStream>
#include <QTranslator>

#include <algorithm>
#include <string_view>

using namespace Qt::StringLiterals;

namespace LintoraContainer {

namespace {

void describeProgram()
{
    QCoreApplication::setApplicationName(u"lintora"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(LINTORA_VERSION));
}

void describeApplication()
{
    QGuiApplication::setApplicationDisplayName(u"VELMORA 字幕助手"_s);
    // By the one, docks find name and icon; by the other, window managers that know no desktop entries.
    QGuiApplication::setDesktopFileName(u"local.lintora.workflow"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/local.lintora.workflow.png"_s));
}

QList<QUrl> requestedUrls(QStringList arguments)
{
    // Given to programs that macOS opens for the first time since their download; a number of no use.
    arguments.removeIf([](const QString &argument) { return argument.startsWith(u"-psn_"); });
    QCommandLineParser parser;
    parser.setApplicationDescription(u"VELMORA 字幕助手"_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"文件"_s, u"要打开的 SRT、FCPXML 文件或 lintora 链接。"_s, u"[文件…]"_s);
    parser.process(arguments);
    return urls(parser.positionalArguments(), QDir::currentPath());
}

/// What can be answered without a window, and so without a display.
bool isQuestion(int argc, char **argv)
{
    return std::any_of(argv + 1, argv + argc, [](std::string_view argument) {
        return argument == "-h" || argument == "--help" || argument == "--help-all" || argument == "-v" ||
               argument == "--version";
    });
}

/// Answers, and ends the program.
void answer(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTranslator translator;
    Translations::install(translator);
    requestedUrls(QCoreApplication::arguments());
}

} // namespace

QList<QUrl> urls(const QStringList &arguments, const QString &folder)
{
    QList<QUrl> result;
    for (const QString &argument : arguments) {
        const bool isLink =
            argument.startsWith(u"lintora:", Qt::CaseInsensitive) || argument.startsWith(u"file:", Qt::CaseInsensitive);
        result += isLink ? QUrl(argument) : QUrl::fromLocalFile(QDir::cleanPath(QDir(folder).filePath(argument)));
    }
    return result;
}

int main(int argc, char **argv, LintoraApplicationDelegate::PanelFactory panel)
{
    describeProgram();
    if (isQuestion(argc, argv))
        answer(argc, argv);
    Platform::chooseMediaFramework();
    const QApplication application(argc, argv);
    describeApplication();
    QTranslator translator;
    Translations::install(translator);
    const QList<QUrl> requested = requestedUrls(QCoreApplication::arguments());

    SingleInstance instance; // outlives the delegate, so that the next launch finds the draft saved
    try {
        if (instance.launch(requested) == SingleInstance::Launch::handedOver)
            return 0;
    } catch (const ConversionError &error) {
        QTextStream(stderr) << error.message() << Qt::endl;
        return 1;
    }

    LintoraApplicationDelegate delegate(std::move(panel));
    QObject::connect(&instance, &SingleInstance::received, &delegate, &LintoraApplicationDelegate::open);
    delegate.applicationDidFinishLaunching();
    if (!requested.isEmpty())
        delegate.open(requested);
    return QApplication::exec();
}

} // namespace LintoraContainer
