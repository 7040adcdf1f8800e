#pragma once

#include "tests/support/ScriptedServer.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>

/// A chat service on this machine that corrects texts as it is told, and leaves all others as they are.
class Proofreader
{
public:
    explicit Proofreader(QHash<QString, QString> corrected = {})
        : corrections(std::move(corrected))
    {}

    QString address() const { return m_server.url(QStringLiteral("/v1")).toString(); }
    bool waitForConnections(int count) const { return m_server.waitForConnections(count); }

    /// What it was sent, in order.
    QList<QByteArray> requests() const
    {
        QList<QByteArray> bodies;
        for (const ScriptedServer::Request &request : m_server.requests())
            bodies += request.body;
        return bodies;
    }

    QHash<QString, QString> corrections; ///< Not to be changed while it is asked.
    std::atomic<bool> isSilent = false;  ///< Whether it never answers.

private:
    ScriptedServer::Reply answer(const ScriptedServer::Request &request) const
    {
        if (isSilent)
            return {.end = ScriptedServer::Reply::End::stall};
        const QJsonArray messages =
            QJsonDocument::fromJson(request.body).object().value(QStringLiteral("messages")).toArray();
        const QByteArray content = messages.last().toObject().value(QStringLiteral("content")).toString().toUtf8();
        QJsonArray rows;
        for (const QJsonValue row : QJsonDocument::fromJson(content).array()) {
            const QString text = row.toObject().value(QStringLiteral("text")).toString();
            rows.append(QJsonObject{{QStringLiteral("id"), row.toObject().value(QStringLiteral("id"))},
                                    {QStringLiteral("text"), corrections.value(text, text)}});
        }
        const QJsonDocument written(QJsonObject{{QStringLiteral("translations"), rows}});
        const QJsonObject message{{QStringLiteral("content"), QString::fromUtf8(written.toJson())}};
        const QJsonArray choices{QJsonObject{{QStringLiteral("message"), message}}};
        return ScriptedServer::reply(200, QJsonDocument(QJsonObject{{QStringLiteral("choices"), choices}}).toJson(),
                                     "Content-Type: application/json\r\n");
    }

    ScriptedServer m_server{[this](const ScriptedServer::Request &request) { return answer(request); }};
};
