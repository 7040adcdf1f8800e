#include "ai/ServiceMessage.h"

#include "ai/Redaction.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ServiceMessage {

namespace {

constexpr qsizetype longestBody = 65'536; // bytes

/// The key is hidden before the text is cut, which might leave a part of it.
QString shown(const QString &text, const QString &key)
{
    constexpr qsizetype longest = 240; // characters
    return Redaction::hide(text, key).simplified().left(longest);
}

} // namespace

QString refusal(const QString &what, int status, std::span<const Hint> hints)
{
    const auto last = hints.end() - 1;
    const auto hint = std::ranges::find(hints.begin(), last, status, &Hint::status);
    return u"%1（HTTP %2）%3"_s.arg(what, QString::number(status), hint->text);
}

QString ofError(QByteArrayView body, const QString &key)
{
    if (body.size() > longestBody)
        return {};
    const QJsonObject error = QJsonDocument::fromJson(body.toByteArray()).object().value(u"error").toObject();
    QString message = error.value(u"message").toString();
    if (message.isEmpty())
        return {};
    if (const QString code = error.value(u"code").toVariant().toString(); !code.isEmpty())
        message += u"（%1）"_s.arg(code);
    return shown(message, key);
}

QString ofAnyText(QByteArrayView body, const QString &key)
{
    QString told = ofError(body, key);
    const QByteArrayView text = body.trimmed();
    if (!told.isEmpty() || body.size() > longestBody || text.startsWith('<') || text.startsWith('{'))
        return told;
    return shown(QString::fromUtf8(text), key);
}

} // namespace ServiceMessage
