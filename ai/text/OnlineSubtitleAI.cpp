#include "ai/text/OnlineSubtitleAI.h"

#include "ai/HTTP.h"
#include "ai/LocalAIJob.h"
#include "ai/Patience.h"
#include "ai/ServiceMessage.h"
#include "core/json/JsonWriter.h"
#include "core/text/Characters.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace OnlineSubtitleAI {

namespace {

constexpr int success = 200;

void writeMessage(JsonWriter &json, QStringView role, const QString &text)
{
    json.beginObject();
    json.key("content").text(text);
    json.key("role").text(role);
    json.endObject();
}

constexpr ServiceMessage::Hint hints[] = {{401, u"请检查 API 密钥。"},
                                          {403, u"请检查模型开通状态与接口权限。"},
                                          {404, u"请检查 API 地址和模型名称。"},
                                          {429, u"请求被限流或额度受限，请稍后重试并查看服务商提示。"},
                                          {0, u"请检查服务商状态与接口配置。"}};

void checkLengths(const QList<Subtitle> &rows)
{
    constexpr qsizetype longest = 1'500; // characters
    const auto tooLong =
        std::ranges::find_if(rows, [](const Subtitle &row) { return Characters::count(row.text) > longest; });
    if (rows.isEmpty() || tooLong != rows.end())
        throw ConversionError(u"请先载入字幕；单条超过 1500 字时请先分句。"_s,
                              rows.isEmpty() ? QString() : u"第 %1 条字幕"_s.arg(tooLong->id));
}

QString ask(const QByteArray &body, const OnlineAIConfiguration &configuration, LocalAIJob &job,
            const ProgressReport &progress)
{
    const HTTP::Request request{
        .url = configuration.endpoint(),
        .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer " + configuration.apiKey.toUtf8()}},
        .silence = 180s};
    const HTTP::Watch watch{.waiting = [&](std::chrono::milliseconds elapsed) {
        constexpr int interval = 5; // seconds
        if (std::chrono::round<std::chrono::seconds>(elapsed).count() % interval == 0)
            progress({.what = u"等待在线服务答复 · 已用时 "_s +
                              Patience::elapsedText(std::chrono::round<std::chrono::seconds>(elapsed))});
    }};
    const HTTP::Answer answer = Patience::send([&] { return HTTP::post(request, body, job, watch); }, job, progress);
    if (answer.head.status != success)
        throw requestError(answer.head.status, answer.body.value_or(QByteArray()), configuration);
    if (!answer.body || answer.body->isEmpty())
        throw ConversionError(u"API 响应为空或过大，原字幕已保留。"_s);
    return content(*answer.body);
}

} // namespace

QByteArray requestBody(const QString &instruction, const QList<SubtitleAI::RequestRow> &rows,
                       const OnlineAIConfiguration &configuration)
{
    return jsonBytes([&](JsonWriter &json) {
        json.beginObject();
        json.key("messages").beginArray();
        writeMessage(json, u"system", instruction);
        writeMessage(json, u"user", QString::fromUtf8(SubtitleAI::rowsText(rows)));
        json.endArray();
        json.key("model").text(configuration.model.trimmed());
        json.key("stream").boolean(false);
        if (configuration.quickReview && configuration.canSkipThinking()) {
            json.key("thinking").beginObject();
            json.key("type").text(u"disabled");
            json.endObject();
        }
        json.endObject();
    });
}

QString content(QByteArrayView answer)
{
    const QJsonValue content = QJsonDocument::fromJson(answer.toByteArray())
                                   .object()
                                   .value(u"choices")
                                   .toArray()
                                   .at(0)
                                   .toObject()
                                   .value(u"message")
                                   .toObject()
                                   .value(u"content");
    if (!content.isString())
        throw ConversionError(u"API 返回格式不兼容，需要 Chat Completions 接口。"_s);
    static const QRegularExpression fence(u"^```[^\\n`{]*\\n?(.*)```$"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    const QString text = content.toString().trimmed();
    const auto match = fence.match(text);
    return match.hasMatch() ? match.captured(1).trimmed() : text;
}

ConversionError requestError(int status, QByteArrayView body, const OnlineAIConfiguration &configuration)
{
    QString text = ServiceMessage::refusal(u"API 请求失败"_s, status, hints);
    const QString message = ServiceMessage::ofError(body, configuration.apiKey);
    if (!message.isEmpty())
        text += u"\n服务商提示："_s + message;
    return ConversionError(text + u"\n原字幕已保留。"_s,
                           message.isEmpty() ? ServiceMessage::ofAnyText(body, configuration.apiKey) : QString());
}

AnsweredCues answer(const QList<Subtitle> &rows, const SubtitleAI::TextTask &task,
                    const OnlineAIConfiguration &configuration, const QString &ledgerFolder, LocalAIJob &job,
                    const ProgressReport &progress)
{
    const QUrl endpoint = configuration.endpoint();
    checkLengths(rows);
    SubtitleAI::TextRun run(rows, task,
                            {.model = configuration.model.trimmed().toUtf8(),
                             .endpoint = endpoint.toString(),
                             .isQuick = configuration.quickReview,
                             .batch = configuration.quickReview ? 2'400 : 1'200},
                            ledgerFolder);
    run.ask(
        [&](const QString &instruction, const QList<SubtitleAI::RequestRow> &batch) {
            return ask(requestBody(instruction, batch, configuration), configuration, job, progress);
        },
        job, progress);
    return run.finish();
}

} // namespace OnlineSubtitleAI
