#include "cli/ServiceArguments.h"

#include "ai/AIKeychain.h"
#include "cli/Arguments.h"

using namespace Qt::StringLiterals;

void ServiceArguments::add(CLI::App &command, const std::string &prefix)
{
    auto *const address =
        command.add_option("--" + prefix + "api", url, "改用在线服务：接口地址（https，本机可用 http）")
            ->type_name("URL")
            ->check(Arguments::notEmpty);
    auto *const name = command.add_option("--" + prefix + "api-model", model, "在线服务的模型名称")->type_name("NAME");
    address->needs(name);
    name->needs(address);
    command.add_option("--" + prefix + "key-env", keyVariable, "存放密钥的环境变量名（缺省使用钥匙串中的密钥）")
        ->type_name("NAME")
        ->check(Arguments::notEmpty)
        ->needs(address);
}

OnlineAIConfiguration ServiceArguments::forTexts(bool isQuick) const
{
    OnlineAIConfiguration service{
        .baseURL = Arguments::toText(url), .model = Arguments::toText(model), .apiKey = {}, .quickReview = isQuick};
    service.endpoint();
    service.apiKey = key(AIKeychain::textAccount);
    return service;
}

SpeechAPIConfiguration ServiceArguments::forSpeech(bool wantsWords) const
{
    SpeechAPIConfiguration service{.baseURL = Arguments::toText(url),
                                   .model = Arguments::toText(model),
                                   .apiKey = {},
                                   .wordTimestamps = wantsWords};
    service.endpoint();
    service.apiKey = key(AIKeychain::speechAccount);
    return service;
}

void ServiceArguments::hideKey() const
{
    if (!keyVariable.empty())
        qunsetenv(keyVariable.c_str());
}

QString ServiceArguments::key(const QString &account) const
{
    if (keyVariable.empty())
        return AIKeychain::read(account);
    const char *const variable = keyVariable.c_str();
    if (!qEnvironmentVariableIsSet(variable))
        throw Arguments::WrongUse(u"没有环境变量 "_s + Arguments::toText(keyVariable));
    return qEnvironmentVariable(variable);
}
