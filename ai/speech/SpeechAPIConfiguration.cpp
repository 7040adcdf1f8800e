#include "ai/speech/SpeechAPIConfiguration.h"

#include "ai/ServiceAddress.h"
#include "core/ConversionError.h"

using namespace Qt::StringLiterals;

QUrl SpeechAPIConfiguration::endpoint() const
{
    const auto address = ServiceAddress::parse(baseURL);
    if (!address)
        throw ConversionError(u"音频转写地址需使用 HTTPS；本机服务可使用 localhost 或 127.0.0.1。"_s);
    for (const QString &name : {address->host(), model}) {
        if (name.contains(u"deepseek", Qt::CaseInsensitive))
            throw ConversionError(u"此配置是文字聊天接口，不能转写音频。DeepSeek "
                                  "可用于生成后校对；识别需要支持音频和时间戳的转写服务。"_s);
    }
    if (model.trimmed().isEmpty())
        throw ConversionError(u"请填写语音识别模型名称。"_s);
    return ServiceAddress::withOperation(*address, u"audio/transcriptions"_s);
}

bool SpeechAPIConfiguration::isLocal() const
{
    return ServiceAddress::isLocal(QUrl(baseURL.trimmed()).host());
}
