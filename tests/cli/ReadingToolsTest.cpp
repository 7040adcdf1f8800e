#include "core/files/FileReader.h"
#include "tests/support/CommandLine.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A folder for input and output.
class ReadingTools : public ::testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString file(const QString &name, const QByteArray &content) const
    {
        QFile target(path(name));
        EXPECT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(content);
        return target.fileName();
    }

private:
    QTemporaryDir m_folder;
};

void expectOutcome(const CommandLine::Outcome &outcome, int status, const QByteArray &output, const QByteArray &error)
{
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.output.toStdString(), output.toStdString());
    EXPECT_EQ(outcome.error.toStdString(), error.toStdString());
}

} // namespace

TEST_F(ReadingTools, convert_script_converts_all_but_the_names_kept)
{
    const QString in = file(u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n張國榮的頭髮\n");
    const QString out = path(u"out.srt"_s);
    expectOutcome(CommandLine::run({u"convert-script"_s, in, u"--to"_s, u"simplified"_s, u"--keep"_s,
                                    file(u"names"_s, "張國榮、鄧麗君"), u"-o"_s, out, u"--progress"_s}),
                  0, {}, "已转换 1 条字幕\n");
    EXPECT_EQ(FileReader::readAll(out), "1\n00:00:01,000 --> 00:00:02,000\n張國榮的头发\n");
    expectOutcome(CommandLine::run({u"convert-script"_s, out, u"--to"_s, u"traditional"_s, u"--json"_s}), 0,
                  "[{\"end\":2000,\"id\":1,\"start\":1000,\"text\":\"張國榮的頭髮\"}]\n", {});
    EXPECT_EQ(CommandLine::run({u"convert-script"_s, in, u"--to"_s, u"taiwan"_s}).status, 2);
    EXPECT_EQ(CommandLine::run({u"convert-script"_s, in}).status, 2);
}
