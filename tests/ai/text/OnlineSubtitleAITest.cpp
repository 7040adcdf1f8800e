#include "ai/text/OnlineSubtitleAI.h"

#include "ai/LocalAIJob.h"
#include "ai/Patience.h"
#include "ai/Redaction.h"
#include "core/Cancelled.h"
#include "core/PlatformError.h"
#include "tests/support/ScriptedServer.h"

#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

namespace {

const QString key = u"sk-Aq7/Zx+19secretKEY"_s;

QList<Subtitle> threeCues()
{
    return {{.id = 1, .start = 0, .end = 900, .text = u"一"_s},
            {.id = 2, .start = 1'000, .end = 1'900, .text = u"二"_s},
            {.id = 3, .start = 2'000, .end = 2'900, .text = u"三"_s}};
}

QByteArray chat(const QString &content)
{
    const QJsonObject message{{u"role"_s, u"assistant"_s}, {u"content"_s, content}};
    return QJsonDocument(QJsonObject{{u"choices"_s, QJsonArray{QJsonObject{{u"message"_s, message}}}}}).toJson();
}

/// An answer with these entries.
QString entries(const std::vector<std::pair<int, const char *>> &rows)
{
    QJsonArray array;
    for (const auto &[id, text] : rows)
        array.append(QJsonObject{{u"id"_s, id}, {u"text"_s, QString::fromUtf8(text)}});
    return QString::fromUtf8(QJsonDocument(QJsonObject{{u"translations"_s, array}}).toJson(QJsonDocument::Compact));
}

struct Asking
{
    explicit Asking(const QUrl &url)
        : configuration{.baseURL = url.toString(), .model = u" test-model "_s, .apiKey = key}
    {}

    /// The sentence with which it ended, empty when it succeeded.
    QString ending(const QList<Subtitle> &rows = threeCues())
    {
        LocalAIJob job;
        try {
            cues = OnlineSubtitleAI::answer(rows, task, configuration, ledger.path(), job, [&](const Progress &now) {
                       progress.append(now.what);
                   }).cues;
            return {};
        } catch (const ConversionError &error) {
            return error.message();
        } catch (const PlatformError &error) {
            return u"network: "_s + error.description();
        }
    }

    QStringList texts() const
    {
        QStringList result;
        for (const Subtitle &cue : cues)
            result.append(cue.text);
        return result;
    }

    OnlineAIConfiguration configuration;
    SubtitleAI::TextTask task{.work = SubtitleAI::TextWork::proofreading};
    QTemporaryDir ledger;
    QList<Subtitle> cues;
    QStringList progress;
};

ScriptedServer::Script always(const Reply &reply)
{
    return [reply](const Request &) { return reply; };
}

/// Answers every row with its own text in brackets.
Reply echo(const Request &request)
{
    const QJsonArray messages = QJsonDocument::fromJson(request.body).object().value(u"messages").toArray();
    const QJsonArray rows =
        QJsonDocument::fromJson(messages.at(1).toObject().value(u"content").toString().toUtf8()).array();
    QJsonArray answered;
    for (const QJsonValue &row : rows)
        answered.append(QJsonObject{{u"id"_s, row.toObject().value(u"id")},
                                    {u"text"_s, u"["_s + row.toObject().value(u"text").toString() + u"]"_s}});
    return ScriptedServer::reply(
        200, chat(QString::fromUtf8(QJsonDocument(QJsonObject{{u"translations"_s, answered}}).toJson())));
}

constexpr auto unreadable = u"翻译结果读取失败，原字幕已保留。";
constexpr auto mismatch = u"翻译条数不匹配，原字幕已保留，请重试。";
constexpr auto invalid = u"翻译含无效文字，原字幕已保留。";
constexpr auto incompatible = u"API 返回格式不兼容，需要 Chat Completions 接口。";
constexpr auto emptyOrHuge = u"API 响应为空或过大，原字幕已保留。";

} // namespace

TEST(OnlineAIConfiguration, an_address_is_safe_or_refused)
{
    const std::pair<QString, QString> accepted[] = {
        {u" https://api.test/v1/ "_s, u"https://api.test/v1/chat/completions"_s},
        {u"https://api.test/v1///"_s, u"https://api.test/v1/chat/completions"_s},
        {u"https://api.test"_s, u"https://api.test/chat/completions"_s},
        {u"https://api.test/v1/chat/completions"_s, u"https://api.test/v1/chat/completions"_s},
        {u"http://127.0.0.1:8080/v1"_s, u"http://127.0.0.1:8080/v1/chat/completions"_s},
        {u"http://LOCALHOST/v1"_s, u"http://localhost/v1/chat/completions"_s},
        {u"http://[::1]:1/v1"_s, u"http://[::1]:1/v1/chat/completions"_s},
    };
    for (const auto &[typed, endpoint] : accepted)
        EXPECT_EQ((OnlineAIConfiguration{.baseURL = typed, .model = u"m"_s, .apiKey = {}}.endpoint().toString()),
                  endpoint);
    for (const QString &typed : {u""_s, u"api.test/v1"_s, u"http://api.test/v1"_s, u"ftp://127.0.0.1"_s, u"https://"_s,
                                 u"https://u:p@api.test"_s, u"https://api.test/v1?x=1"_s, u"https://api.test/v1#x"_s,
                                 u"http://127.0.0.1.evil.test/"_s, u"https:// x"_s})
        EXPECT_THROW((OnlineAIConfiguration{.baseURL = typed, .model = u"m"_s, .apiKey = {}}.endpoint()),
                     ConversionError)
            << typed.toStdString();
    EXPECT_THROW((OnlineAIConfiguration{.baseURL = u"https://api.test"_s, .model = u" "_s, .apiKey = {}}.endpoint()),
                 ConversionError);
}

TEST(OnlineSubtitleAI, only_known_models_are_told_not_to_think)
{
    const auto body = [](const QString &host, const QString &model, bool quick) {
        return QJsonDocument::fromJson(
                   OnlineSubtitleAI::requestBody(
                       u"do it"_s, {{.id = 0, .text = u"你好"_s}},
                       {.baseURL = u"https://"_s + host, .model = model, .apiKey = key, .quickReview = quick}))
            .object();
    };
    EXPECT_TRUE(body(u"API.deepseek.com"_s, u" deepseek-flash"_s, true).contains(u"thinking"));
    EXPECT_TRUE(body(u"ark.cn-beijing.volces.com"_s, u"deepseek-v4-pro-ga-260813"_s, true).contains(u"thinking"));
    EXPECT_FALSE(body(u"api.deepseek.com"_s, u"deepseek-flash"_s, false).contains(u"thinking"));
    EXPECT_FALSE(body(u"api.deepseek.com"_s, u"other"_s, true).contains(u"thinking"));
    EXPECT_FALSE(body(u"api.test"_s, u"deepseek-flash"_s, true).contains(u"thinking"));
    const QJsonObject plain = body(u"api.test"_s, u" m "_s, false);
    EXPECT_EQ(plain.value(u"model").toString(), u"m"_s);
    EXPECT_EQ(plain.value(u"stream").toBool(true), false);
    const QJsonArray messages = plain.value(u"messages").toArray();
    EXPECT_EQ(messages.at(0).toObject().value(u"content").toString(), u"do it"_s);
    EXPECT_EQ(messages.at(1).toObject().value(u"content").toString(), u"[{\"id\":0,\"text\":\"你好\"}]"_s);
}

TEST(OnlineSubtitleAI, every_kind_of_answer_is_taken_whole_or_refused_whole)
{
    const QString good = entries({{2, "C"}, {0, "A"}, {1, "B"}});
    const auto talk = [](const QString &content) { return ScriptedServer::reply(200, chat(content)); };
    struct Row
    {
        const char *name;
        Reply reply;
        const char16_t *sentence; ///< Empty where the answer is taken.
    };
    const Row rows[] = {
        {"ids shuffled", talk(good), u""},
        {"fenced", talk(u"```json\n"_s + good + u"\n```"_s), u""},
        {"fenced without a word", talk(u"```\n"_s + good + u"\n```\n"_s), u""},
        {"another content type", ScriptedServer::reply(200, chat(good), "Content-Type: text/plain\r\n"), u""},
        {"half a fence", talk(u"```json\n"_s + good), unreadable},
        {"a think block", talk(u"<think>hm</think>"_s + good), unreadable},
        {"talk before", talk(u"Here: "_s + good), unreadable},
        {"talk after", talk(good + u" Done."_s), unreadable},
        {"no object", talk(u"A\nB\nC"_s), unreadable},
        {"empty content", talk({}), unreadable},
        {"ids from 1", talk(entries({{1, "A"}, {2, "B"}, {3, "C"}})), mismatch},
        {"an id twice", talk(entries({{0, "A"}, {1, "B"}, {1, "C"}})), mismatch},
        {"two lines merged", talk(entries({{0, "A B"}, {2, "C"}})), mismatch},
        {"a line too many", talk(entries({{0, "A"}, {1, "B"}, {2, "C"}, {3, "D"}})), mismatch},
        {"an empty line", talk(entries({{0, "A"}, {1, " "}, {2, "C"}})), invalid},
        {"a control character", talk(entries({{0, "A"}, {1, "B\r"}, {2, "C\rD"}})), invalid},
        {"nothing", ScriptedServer::reply(200, ""), emptyOrHuge},
        {"endless",
         {.head = "HTTP/1.1 200 OK\r\n", .body = QByteArray(65'536, ' '), .repeats = 1'000'000'000},
         emptyOrHuge},
        {"a page", ScriptedServer::reply(200, "<html>"), incompatible},
        {"no choice", ScriptedServer::reply(200, "{\"choices\":[]}"), incompatible},
        {"content that is no text", ScriptedServer::reply(200, R"({"choices":[{"message":{"content":null}}]})"),
         incompatible},
        {"401", ScriptedServer::reply(401, ""), u"API 请求失败（HTTP 401）请检查 API 密钥。\n原字幕已保留。"},
        {"403", ScriptedServer::reply(403, "x"),
         u"API 请求失败（HTTP 403）请检查模型开通状态与接口权限。\n原字幕已保留。"},
        {"404", ScriptedServer::reply(404, "[]"),
         u"API 请求失败（HTTP 404）请检查 API 地址和模型名称。\n原字幕已保留。"},
        {"429", ScriptedServer::reply(429, R"({"error":{"message":"slow\ndown","code":"rate"}})"),
         u"API 请求失败（HTTP 429）请求被限流或额度受限，请稍后重试并查看服务商提示。\n"
         "服务商提示：slow down（rate）\n原字幕已保留。"},
        {"500", ScriptedServer::reply(500, R"({"error":"text"})"),
         u"API 请求失败（HTTP 500）请检查服务商状态与接口配置。\n原字幕已保留。"},
        {"503 for long", ScriptedServer::reply(503, "", "Retry-After: 61\r\n"),
         u"API 请求失败（HTTP 503）请检查服务商状态与接口配置。\n原字幕已保留。"},
        {"a long error body",
         ScriptedServer::reply(400, "{\"error\":{\"message\":\"" + QByteArray(65'536, 'x') + "\"}}"),
         u"API 请求失败（HTTP 400）请检查服务商状态与接口配置。\n原字幕已保留。"},
        {"a redirect", ScriptedServer::reply(307, "", "Location: https://thief.test/\r\n"),
         u"API 请求失败（HTTP 307）请检查服务商状态与接口配置。\n原字幕已保留。"},
        {"reset in the body",
         {.head = "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n", .body = "{", .end = Reply::End::reset},
         u"network: "},
    };
    for (const Row &row : rows) {
        const ScriptedServer server(always(row.reply));
        Asking run(server.url(u"/v1"_s));
        const QString ending = run.ending();
        const QString expected = QString::fromUtf16(row.sentence);
        if (expected == u"network: ")
            EXPECT_TRUE(ending.startsWith(expected)) << row.name << ending.toStdString();
        else
            EXPECT_EQ(ending.toStdString(), expected.toStdString()) << row.name;
        EXPECT_EQ(run.texts(), expected.isEmpty() ? (QStringList{u"A"_s, u"B"_s, u"C"_s}) : QStringList()) << row.name;
        EXPECT_EQ(server.requests().size(), 1) << row.name;
    }
}

TEST(OnlineSubtitleAI, what_was_answered_is_not_asked_and_paid_for_again)
{
    QList<Subtitle> rows;
    for (int i = 0; i < 5; ++i)
        rows.append({.id = i + 1, .start = i * 1'000, .end = i * 1'000 + 900, .text = QString(600, QChar(u'一' + i))});
    int left = 2;
    const ScriptedServer server([&](const Request &request) {
        return left-- > 0 || left < -1 ? echo(request) : ScriptedServer::reply(500, "");
    });
    Asking run(server.url(u"/v1"_s));
    EXPECT_TRUE(run.ending(rows).contains(u"HTTP 500"));
    EXPECT_TRUE(run.cues.isEmpty());
    EXPECT_EQ(run.ending(rows), QString());
    ASSERT_EQ(run.cues.size(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(run.cues[i].text, u'[' + rows[i].text + u']');
    // Two batches of two, one that failed, and then only that one again.
    EXPECT_EQ(server.requests().size(), 4);
    EXPECT_EQ(server.requests().last().headers.value("authorization"), "Bearer " + key.toUtf8());
    QDirIterator files(run.ledger.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(file.readAll().contains("secret"));
    }
    run.configuration.quickReview = true;
    EXPECT_EQ(run.ending(rows), QString());
    EXPECT_EQ(server.requests().size(), 6); // 2400 characters each
}

TEST(OnlineSubtitleAI, a_busy_service_is_waited_for_where_it_says_how_long)
{
    int busy = 2;
    const ScriptedServer server([&](const Request &request) {
        return busy-- > 0 ? ScriptedServer::reply(busy == 1 ? 429 : 503, "", "Retry-After: 1\r\n") : echo(request);
    });
    Asking run(server.url(u"/v1"_s));
    EXPECT_EQ(run.ending(), QString());
    EXPECT_EQ(server.requests().size(), 3);
    EXPECT_TRUE(run.progress.contains(u"服务繁忙，1 秒后重试"_s));
    const ScriptedServer always429(always(ScriptedServer::reply(429, "", "Retry-After: 0\r\n")));
    EXPECT_TRUE(Asking(always429.url(u"/v1"_s)).ending().contains(u"HTTP 429"));
    EXPECT_EQ(always429.requests().size(), 4);
    const QByteArray past = "Retry-After: Wed, 21 Oct 2015 07:28:00 GMT\r\n";
    const ScriptedServer dated(always(ScriptedServer::reply(503, "", past)));
    EXPECT_TRUE(Asking(dated.url(u"/v1"_s)).ending().contains(u"HTTP 503"));
    EXPECT_EQ(dated.requests().size(), 4);
    const ScriptedServer later(always(ScriptedServer::reply(503, "", "Retry-After: 61\r\n")));
    EXPECT_TRUE(Asking(later.url(u"/v1"_s)).ending().contains(u"HTTP 503"));
    EXPECT_EQ(later.requests().size(), 1);
    const ScriptedServer minute(always(ScriptedServer::reply(503, "", "Retry-After: 60\r\n")));
    LocalAIJob job;
    Asking cancelled(minute.url(u"/v1"_s));
    EXPECT_THROW(OnlineSubtitleAI::answer(threeCues(), cancelled.task, cancelled.configuration, cancelled.ledger.path(),
                                          job,
                                          [&](const Progress &now) {
                                              if (now.what.contains(u"60 秒"))
                                                  job.cancel();
                                          }),
                 Cancelled);
}

TEST(OnlineSubtitleAI, the_key_is_hidden_however_a_service_shows_it)
{
    const QByteArray bytes = key.toUtf8();
    const QByteArray shapes[] = {bytes,
                                 bytes.left(8) + "****" + bytes.right(4),
                                 "***" + bytes.right(5),
                                 bytes.toPercentEncoding(),
                                 bytes.toBase64(),
                                 bytes.toHex(),
                                 bytes.mid(5, 9),
                                 bytes.toUpper()};
    for (const QByteArray &shape : shapes) {
        const QByteArray body = "{\"error\":{\"message\":\"Incorrect API key: " + shape + ".\"}}";
        const QString told =
            OnlineSubtitleAI::requestError(401, body, {.baseURL = {}, .model = {}, .apiKey = key}).message();
        EXPECT_TRUE(told.contains(u"Incorrect API key: ")) << shape.constData();
        EXPECT_TRUE(told.contains(u"[已隐藏]")) << shape.constData();
        EXPECT_FALSE(told.contains(QString::fromLatin1(shape))) << shape.constData();
        EXPECT_FALSE(told.contains(u"KEY", Qt::CaseInsensitive) && told.section(u"API key"_s, 1).contains(u"KEY"))
            << shape.constData();
    }
    EXPECT_EQ(Redaction::hide(u"nothing here"_s, key), u"nothing here"_s);
    EXPECT_EQ(Redaction::hide(u"nothing here"_s, {}), u"nothing here"_s);
    const QString longMessage = QString(235, u'x') + key;
    const QString told =
        OnlineSubtitleAI::requestError(400, "{\"error\":{\"message\":\"" + longMessage.toUtf8() + "\"}}",
                                       {.baseURL = {}, .model = {}, .apiKey = key})
            .message();
    EXPECT_FALSE(told.contains(u"sk-"));
}

TEST(OnlineSubtitleAI, long_or_missing_cues_are_refused_before_anything_is_sent)
{
    const ScriptedServer server(echo);
    Asking run(server.url(u"/v1"_s));
    EXPECT_EQ(run.ending({}), u"请先载入字幕；单条超过 1500 字时请先分句。"_s);
    EXPECT_EQ(run.ending({{.id = 1, .start = 0, .end = 1, .text = QString(1'501, u'字')}}),
              u"请先载入字幕；单条超过 1500 字时请先分句。"_s);
    run.task.references = {threeCues().first()};
    EXPECT_EQ(run.ending(), u"原文与译文时间不对应，请先匹配字幕轨道。"_s);
    EXPECT_EQ(server.connections(), 0);
}

TEST(Patience, times_are_told_as_clocks_show_them)
{
    using std::chrono::seconds;
    EXPECT_EQ(Patience::elapsedText(seconds(5)), u"0:05"_s);
    EXPECT_EQ(Patience::elapsedText(seconds(65)), u"1:05"_s);
    EXPECT_EQ(Patience::elapsedText(seconds(3'725)), u"1:02:05"_s);
}
