#pragma once

#include <QByteArray>
#include <QStringList>

/// Runs lintora-cli as a child process.
namespace CommandLine {

struct Outcome
{
    int status = -1; ///< Exit status, or -1 when the program crashed.
    QByteArray output;
    QByteArray error;
};

/// Runs the program to its end with `input` on standard input.
Outcome run(const QStringList &arguments, const QByteArray &input = {});

/// Runs a shell script in which $CLI is the program, for redirections and limits.
Outcome shell(const QString &script);

/// The path of the program.
QString program();

} // namespace CommandLine
