#pragma once

#include "tests/support/CommandLine.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A test of the program's commands, with a folder for what they read and write.
class CommandTest : public ::testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString file(const QString &name, const QByteArray &content) const; ///< Writes it, and returns its path.

    /// The files of that folder inside this one, hidden ones too, by name.
    QStringList names(const QString &folder = QStringLiteral(".")) const;

    static void expectOutcome(const CommandLine::Outcome &outcome, int status, const QByteArray &output,
                              const QByteArray &error);

private:
    QTemporaryDir m_folder;
};
