#include "tests/support/CommandLine.h"
#include "tests/support/ScriptedServer.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Request = ScriptedServer::Request;

namespace {

constexpr auto subtitles = "1\n00:00:00,000 --> 00:00:01,000\n你好\n\n2\n00:00:01,000 --> 00:00:02,000\n再见\n";

QByteArray chat(const QByteArray &content)
{
    const QJsonObject message{{u"content"_s, QString::fromUtf8(content)}};
    return QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{QJsonObject{{u"message"_s, message}}}}}).toJson();
}

/// The command line with a home folder of its own and a key in the environment.
class OnlineCommandsTest : public ::testing::Test
{
protected:
    OnlineCommandsTest()
    {
        qputenv("HOME", m_home.path().toUtf8());
        qputenv("MY_KEY", "sk-very-secret");
    }
    ~OnlineCommandsTest() override
    {
        qputenv("HOME", m_formerHome);
        qunsetenv("MY_KEY");
    }

    CommandLine::Outcome run(const QStringList &command, const ScriptedServer &server) const
    {
        const QStringList service{
            u"--api"_s,     server.url(u"/v1"_s).toString(), u"--api-model"_s, u"m"_s, u"--key-env"_s, u"MY_KEY"_s,
            u"--progress"_s};
        return CommandLine::run(command + service, subtitles);
    }

    /// What holds the key, of all that the program has written.
    QStringList filesWithTheKey() const
    {
        QStringList result;
        QDirIterator files(m_home.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains("very-secret"))
                result.append(file.fileName());
        }
        return result;
    }

private:
    QTemporaryDir m_home;
    QByteArray m_formerHome = qgetenv("HOME");
};

} // namespace

TEST_F(OnlineCommandsTest, translate_and_proofread_take_a_service_and_show_its_key_nowhere)
{
    const ScriptedServer server([](const Request &) {
        return ScriptedServer::reply(200,
                                     chat(R"({"translations":[{"id":0,"text":"Hello"},{"id":1,"text":"Goodbye"}]})"));
    });
    for (const QStringList &command :
         {QStringList{u"translate"_s, u"-"_s, u"--to"_s, u"en"_s}, QStringList{u"proofread"_s, u"-"_s, u"--quick"_s}}) {
        const CommandLine::Outcome outcome = run(command, server);
        EXPECT_EQ(outcome.status, 0) << outcome.error.constData();
        EXPECT_TRUE(outcome.output.contains("Hello\n")) << outcome.output.constData();
        EXPECT_FALSE((outcome.output + outcome.error).contains("very-secret"));
    }
    EXPECT_EQ(server.requests().value(0).headers.value("authorization"), "Bearer sk-very-secret");
    EXPECT_TRUE(filesWithTheKey().isEmpty());
}

TEST_F(OnlineCommandsTest, answers_are_kept_until_the_result_is_where_it_should_be)
{
    const ScriptedServer server([](const Request &) {
        return ScriptedServer::reply(200,
                                     chat(R"({"translations":[{"id":0,"text":"Hello"},{"id":1,"text":"Goodbye"}]})"));
    });
    const QStringList command = {u"translate"_s, u"-"_s, u"--to"_s, u"en"_s};
    EXPECT_EQ(run(command + QStringList{u"-o"_s, u"/no/such/folder/out.srt"_s}, server).status, 1);
    EXPECT_EQ(run(command, server).status, 0);
    EXPECT_EQ(server.requests().size(), 1);
    EXPECT_EQ(run(command, server).status, 0);
    EXPECT_EQ(server.requests().size(), 2);
}

TEST_F(OnlineCommandsTest, a_refusal_is_told_without_the_key_and_wrong_uses_are_seen)
{
    const ScriptedServer server([](const Request &) {
        return ScriptedServer::reply(401, R"({"error":{"message":"bad key sk-very-secret"}})");
    });
    const CommandLine::Outcome outcome = run({u"proofread"_s, u"-"_s}, server);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.error.contains("API 请求失败（HTTP 401）请检查 API 密钥。\n服务商提示：bad key [已隐藏]\n"))
        << outcome.error.constData();
    EXPECT_TRUE(filesWithTheKey().isEmpty());
    qunsetenv("MY_KEY");
    EXPECT_EQ(run({u"proofread"_s, u"-"_s}, server).status, 2);
    const QString api = u"--api"_s;
    EXPECT_EQ(CommandLine::run({u"proofread"_s, u"-"_s, api, u"https://x.test"_s}).status, 2);
    EXPECT_EQ(CommandLine::run({u"proofread"_s, u"-"_s, u"--quick"_s}).status, 2);
    const CommandLine::Outcome unsafe =
        CommandLine::run({u"proofread"_s, u"-"_s, api, u"http://x.test"_s, u"--api-model"_s, u"m"_s}, subtitles);
    EXPECT_EQ(unsafe.error, "请输入 HTTPS API 地址，例如 https://服务商域名/v1。\n");
}
