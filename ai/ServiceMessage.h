#pragma once

#include <QByteArrayView>
#include <QString>

#include <span>

/// What is told when an online service refuses. What it says itself is one line of at most 240 characters in which the
/// key is hidden.
namespace ServiceMessage {

/// What a person can do about a status of HTTP.
struct Hint
{
    int status;
    QStringView text;
};

/// That `what` was refused with `status`, and what to do: the hint for that status, or the last one, which stands for
/// every other. "API 请求失败（HTTP 401）请检查 API 密钥。"
QString refusal(const QString &what, int status, std::span<const Hint> hints);

/// The message of a JSON error, with its code; empty when `body` is none, or longer than 65,536 bytes.
QString ofError(QByteArrayView body, const QString &key);

/// The same, or what stands in a body of plain text. Empty for a web page.
QString ofAnyText(QByteArrayView body, const QString &key);

} // namespace ServiceMessage
