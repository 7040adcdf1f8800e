#include "tests/ai/models/TestModel.h"
#include "tests/support/CommandLine.h"
#include "tests/support/ScriptedServer.h"

#include "ai/models/LocalModels.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

TEST(ModelsCommand, lists_the_catalog_with_its_status_lines)
{
    const TestModel test;
    QFile small(LocalModels::speechModel(u"small"_s).file());
    ASSERT_TRUE(small.open(QIODevice::WriteOnly));
    small.write("part");
    small.close();
    const CommandLine::Outcome listed = CommandLine::run({u"models"_s, u"--json"_s});
    EXPECT_EQ(listed.status, 0);
    const QJsonArray rows = QJsonDocument::fromJson(listed.output).array();
    ASSERT_EQ(rows.size(), 6);
    const QJsonObject base = rows.at(0).toObject();
    EXPECT_EQ(base.keys(),
              (QStringList{u"bytes"_s, u"file"_s, u"id"_s, u"ready"_s, u"status"_s, u"title"_s, u"verified"_s}));
    EXPECT_EQ(base.value(u"status").toString(), u"尚未下载 · 141.1 MB"_s);
    EXPECT_EQ(rows.at(1).toObject().value(u"status").toString(), u"文件不完整 · 请重新下载"_s);
    EXPECT_EQ(rows.at(5).toObject().value(u"id").toString(), u"translation"_s);
    EXPECT_TRUE(CommandLine::run({u"models"_s, u"list"_s}).output.contains("Whisper Turbo · 推荐"));
}

TEST(ModelsCommand, refuses_in_the_words_of_the_model)
{
    const TestModel test;
    const ScriptedServer server([](const ScriptedServer::Request &) { return ScriptedServer::reply(404, "no"); });
    const QString host = server.url(u"/"_s).toString();
    const CommandLine::Outcome absent =
        CommandLine::run({u"models"_s, u"download"_s, u"base"_s, u"--host"_s, host, u"--host"_s, host});
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.error, "模型下载失败，请检查网络后重试。\n");
    EXPECT_EQ(server.requests().size(), 2);
    const CommandLine::Outcome unverified = CommandLine::run({u"models"_s, u"verify"_s, u"base"_s});
    EXPECT_EQ(unverified.status, 1);
    EXPECT_EQ(unverified.error, "模型下载不完整，请重新下载。\n");
    EXPECT_EQ(CommandLine::run({u"models"_s, u"verify"_s, u"huge"_s}).status, 2);
    EXPECT_EQ(CommandLine::run({u"models"_s, u"download"_s, u"base"_s, u"--host"_s, u"ftp://x/"_s}).status, 2);
}

TEST(ModelsCommand, ctrl_c_ends_a_download_that_hangs_and_the_part_can_be_thrown_away)
{
    const TestModel test;
    const ScriptedServer server([](const ScriptedServer::Request &) {
        return ScriptedServer::Reply{.head = "HTTP/1.1 200 OK\r\nContent-Length: 147951465\r\n",
                                     .body = QByteArray(100'000, 'x'),
                                     .end = ScriptedServer::Reply::End::stall};
    });
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(CommandLine::program(),
                  {u"models"_s, u"download"_s, u"base"_s, u"--host"_s, server.url(u"/"_s).toString(), u"--progress"_s});
    QByteArray said;
    while (!said.contains("0%") && process.waitForReadyRead(20'000))
        said += process.readAll();
    ASSERT_TRUE(said.contains("0%"));
    kill(pid_t(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(5'000));
    EXPECT_EQ(process.exitCode(), 130);
    const QStringList partial{u"models"_s, u"partial"_s};
    const QJsonArray rows =
        QJsonDocument::fromJson(CommandLine::run(partial + QStringList{u"--json"_s}).output).array();
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.at(0).toObject().value(u"id").toString(), u"base"_s);
    EXPECT_EQ(rows.at(0).toObject().value(u"bytes").toInt(), 100'000);
    EXPECT_TRUE(CommandLine::run(partial + QStringList{u"--remove"_s}).output.contains("98 KB"));
    EXPECT_FALSE(QFileInfo::exists(rows.at(0).toObject().value(u"file").toString()));
    EXPECT_EQ(CommandLine::run(partial).output, "没有未完成的下载\n");
}
