#include "app/model/ai/AIServices.h"

#include "ai/AnswerLedger.h"
#include "ai/speech/KeptAnswers.h"
#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;
using Service = AISettings::Service;

namespace {

class AIServicesTest : public ModelTest
{
protected:
    AIServices &services() { return model->aiServices(); }

    void setUp(const QString &address, const QString &name = u"model"_s)
    {
        AIChoices choices = model->aiSettings().choices();
        choices.aiAPIBaseURL = address;
        choices.aiAPIModel = name;
        choices.aiSpeechBaseURL = address;
        choices.aiSpeechAPIModel = name;
        model->aiSettings().choose(choices);
        model->aiSettings().setKey(Service::text, u"sk-text-secret"_s);
        model->aiSettings().setKey(Service::speech, u"sk-speech-secret"_s);
    }

    /// What the trial came to.
    AIServices::Verdict trial(Service service)
    {
        services().tryOut(service);
        EXPECT_TRUE(Events::waitFor([&] { return !services().onTrial(); }));
        return services().verdict(service).value_or(AIServices::Verdict());
    }

    static QByteArray chat(const QByteArray &content)
    {
        const QJsonObject message{{u"content"_s, QString::fromUtf8(content)}};
        return QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{QJsonObject{{u"message"_s, message}}}}}).toJson();
    }
};

} // namespace

TEST_F(AIServicesTest, a_trial_says_exactly_what_is_wrong)
{
    struct Row
    {
        const char *name;
        Service service;
        int status;
        QByteArray body;
        QString sentence; ///< How it begins.
    };
    const QByteArray wrongKey = R"({"error":{"message":"key sk-text-secret is wrong","code":"E1"}})";
    const Row rows[] = {
        {"answers", Service::text, 200, chat(R"({"translations":[{"id":0,"text":"大家好，欢迎回来"}]})"),
         u"连接正常，答复可用 · 用时 "_s},
        {"key", Service::text, 401, wrongKey,
         u"API 请求失败（HTTP 401）请检查 API 密钥。\n服务商提示：key [已隐藏] is wrong（E1）"_s},
        {"address", Service::text, 404, "", u"API 请求失败（HTTP 404）请检查 API 地址和模型名称。"_s},
        {"no chat", Service::text, 200, "{}", u"API 返回格式不兼容，需要 Chat Completions 接口。"_s},
        {"another model than is needed", Service::text, 200, chat("Hello!"), u"翻译结果"_s},
        {"hears nothing", Service::speech, 200, R"({"text":"","segments":[]})", u"连接正常，答复可用 · 用时 "_s},
        {"no times", Service::speech, 200, R"({"text":"hello"})", u"此接口没有返回字幕时间戳。"_s},
        {"refuses", Service::speech, 403, "", u"音频转写失败（HTTP 403）请检查语音模型权限。"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const ScriptedServer server([&](const Request & /*request*/) {
            return ScriptedServer::reply(row.status, row.body, "Content-Type: application/json\r\n");
        });
        setUp(server.url(u"/v1"_s).toString());
        const AIServices::Verdict verdict = trial(row.service);
        EXPECT_TRUE(verdict.sentence.startsWith(row.sentence)) << qPrintable(verdict.sentence);
        EXPECT_FALSE(verdict.sentence.contains(u"原字幕"_s));
        EXPECT_EQ(verdict.isGood, row.sentence.startsWith(u"连接正常"_s));
        ASSERT_EQ(server.requests().size(), 1);
        EXPECT_EQ(server.requests().first().headers.value("authorization"),
                  row.service == Service::text ? "Bearer sk-text-secret" : "Bearer sk-speech-secret");
        EXPECT_FALSE(model->aiBusy());
    }
}

TEST_F(AIServicesTest, what_cannot_be_asked_is_told_without_asking)
{
    setUp(u"http://example.org/v1"_s);
    EXPECT_EQ(trial(Service::text).sentence, u"请输入 HTTPS API 地址，例如 https://服务商域名/v1。"_s);
    EXPECT_EQ(trial(Service::speech).sentence, u"音频转写地址需使用 HTTPS；本机服务可使用 localhost 或 127.0.0.1。"_s);
    setUp(u"https://example.org/v1"_s, {});
    EXPECT_EQ(trial(Service::text).sentence, u"请填写模型名称。"_s);
    QUrl closed;
    {
        const ScriptedServer server([](const Request &) { return Reply(); });
        closed = server.url(u"/v1"_s);
    }
    setUp(closed.toString());
    const QString sentence = trial(Service::text).sentence;
    EXPECT_TRUE(sentence.startsWith(u"无法连接 127.0.0.1："_s)) << qPrintable(sentence);
}

TEST_F(AIServicesTest, a_trial_ends_when_it_is_cancelled_or_the_service_changed)
{
    const ScriptedServer server([](const Request &) { return Reply{.end = Reply::End::stall}; });
    setUp(server.url(u"/v1"_s).toString());
    services().tryOut(Service::text);
    ASSERT_TRUE(server.waitForConnections(1));
    services().cancelTrial();
    EXPECT_EQ(services().onTrial(), std::nullopt);
    services().tryOut(Service::text);
    ASSERT_TRUE(server.waitForConnections(2));
    setUp(server.url(u"/v2"_s).toString());
    EXPECT_EQ(services().onTrial(), std::nullopt);
    EXPECT_FALSE(services().verdict(Service::text));
    // A verdict is about the service as it was.
    setUp({});
    trial(Service::text);
    EXPECT_TRUE(services().verdict(Service::text));
    model->aiSettings().setKey(Service::speech, u"other"_s);
    EXPECT_TRUE(services().verdict(Service::text));
    model->aiSettings().setKey(Service::text, u"other"_s);
    EXPECT_FALSE(services().verdict(Service::text));
}

TEST_F(AIServicesTest, kept_answers_are_forgotten)
{
    const AnswerLedger::Work work{.kind = u"t"_s, .direction = {}, .instruction = {}, .model = "m", .endpoint = {}};
    AnswerLedger(AnswerLedger::defaultFolder(), work).keep({{.text = u"一"_s}}, {u"one"_s});
    KeptAnswers(KeptAnswers::defaultFolder()).keep("k", "answer");
    services().forgetAnswers();
    ASSERT_TRUE(Events::waitFor([&] { return model->message() == u"已清除暂存的答复"_s; }));
    EXPECT_EQ(AnswerLedger(AnswerLedger::defaultFolder(), work).answer({.text = u"一"_s}), std::nullopt);
    EXPECT_EQ(KeptAnswers(KeptAnswers::defaultFolder()).answer("k"), std::nullopt);
}
