#include "ai/text/OnlineAIConfiguration.h"

#include "ai/ServiceAddress.h"
#include "core/ConversionError.h"

#include <QStringList>

using namespace Qt::StringLiterals;

QUrl OnlineAIConfiguration::endpoint() const
{
    const auto address = ServiceAddress::parse(baseURL);
    if (!address)
        throw ConversionError(u"请输入 HTTPS API 地址，例如 https://服务商域名/v1。"_s);
    if (model.trimmed().isEmpty())
        throw ConversionError(u"请填写模型名称。"_s);
    return ServiceAddress::withOperation(*address, u"chat/completions"_s);
}

bool OnlineAIConfiguration::canSkipThinking() const
{
    static const QStringList deepSeekModels = {u"deepseek-flash"_s, u"deepseek-v4-pro"_s};
    static const QStringList arkModels = {u"deepseek-v4-1-flash-261017"_s, u"deepseek-v4-1-flash-260910"_s,
                                          u"deepseek-v4-1-flash-economy-261017"_s, u"deepseek-v4-pro-ga-260813"_s,
                                          u"deepseek-v4-flash-ga-260731"_s};
    const auto address = ServiceAddress::parse(baseURL);
    const QString host = address ? address->host().toLower() : QString();
    const QString name = model.trimmed();
    return (host == u"api.deepseek.com" && deepSeekModels.contains(name)) ||
           (host == u"ark.cn-beijing.volces.com" && arkModels.contains(name));
}
