#pragma once

#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/text/OnlineAIConfiguration.h"

#include <QString>

#include <CLI/App.hpp>

#include <string>

/// The options that name an online service. A key is never one of them: it comes from an environment variable or from
/// the keychain.
struct ServiceArguments
{
    std::string url;
    std::string model;
    std::string keyVariable;

    /// --api, --api-model and --key-env; with "review-" as the `prefix`, --review-api and so on.
    void add(CLI::App &command, const std::string &prefix = {});

    bool isGiven() const { return !url.empty(); }

    /// The service as one for texts, or for speech. @throws Arguments::WrongUse when the variable of the key is not
    /// there; ConversionError when the address or the model cannot be meant
    OnlineAIConfiguration forTexts(bool isQuick) const;
    SpeechAPIConfiguration forSpeech(bool wantsWords) const;

    /// Takes the key's variable away, so that no helper program sees it. After all configurations have been made, which
    /// may share one variable, and before other threads start.
    void hideKey() const;

private:
    /// The key in the variable, or the one in the keychain's `account`.
    QString key(const QString &account) const;
};
