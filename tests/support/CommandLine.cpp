#include "tests/support/CommandLine.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace CommandLine {

namespace {

Outcome finish(QProcess &process, const QByteArray &input)
{
    process.write(input);
    process.closeWriteChannel();
    constexpr int limit = 120'000; // milliseconds
    if (!process.waitForFinished(limit))
        process.kill();
    const bool exited = process.exitStatus() == QProcess::NormalExit && process.error() == QProcess::UnknownError;
    return {.status = exited ? process.exitCode() : -1,
            .output = process.readAllStandardOutput(),
            .error = process.readAllStandardError()};
}

} // namespace

Outcome run(const QStringList &arguments, const QByteArray &input)
{
    QProcess process;
    process.start(program(), arguments);
    return finish(process, input);
}

Outcome shell(const QString &script)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"CLI"_s, program());
    process.setProcessEnvironment(environment);
    process.start(u"/bin/sh"_s, {u"-c"_s, script});
    return finish(process, {});
}

QString program()
{
    return QStringLiteral(LINTORA_CLI);
}

} // namespace CommandLine
