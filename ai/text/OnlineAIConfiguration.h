#pragma once

#include <QString>
#include <QUrl>

/// An online service that speaks the Chat Completions protocol, as the person has set it up.
struct OnlineAIConfiguration
{
    QString baseURL;          ///< As typed.
    QString model;            ///< As typed.
    QString apiKey;           ///< From the keychain; never stored with the others.
    bool quickReview = false; ///< Larger requests, and no deep thinking where the service can do without.

    /// Where requests go.
    /// @throws ConversionError "请输入 HTTPS API 地址，例如 https://服务商域名/v1。", "请填写模型名称。"
    QUrl endpoint() const;

    /// Whether the service is one that is told not to think: known by its host and its model.
    bool canSkipThinking() const;
};
