#include "tests/support/CommandTest.h"

#include <QDir>
#include <QFile>

QString CommandTest::file(const QString &name, const QByteArray &content) const
{
    QFile target(path(name));
    EXPECT_TRUE(target.open(QIODevice::WriteOnly));
    target.write(content);
    return target.fileName();
}

QStringList CommandTest::names(const QString &folder) const
{
    return QDir(path(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

void CommandTest::expectOutcome(const CommandLine::Outcome &outcome, int status, const QByteArray &output,
                                const QByteArray &error)
{
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.output.toStdString(), output.toStdString());
    EXPECT_EQ(outcome.error.toStdString(), error.toStdString());
}
