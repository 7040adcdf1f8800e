#pragma once

#include "ai/HelperProcess.h"
#include "core/Progress.h"

#include <QByteArray>
#include <QString>

class LocalAIJob;
class Workspace;

/// The language model's server: one child process that listens on this machine alone, answers nobody without the key of
/// this one run, and ends with this object.
class TranslationServer
{
public:
    /// Starts it with the model file `model` and returns when it has loaded it.
    /// @throws ConversionError when it is missing, cannot be started, ends or does not become ready within two minutes;
    /// Cancelled
    TranslationServer(const QString &model, LocalAIJob &job, const Workspace &workspace,
                      const ProgressReport &progress);
    ~TranslationServer();
    TranslationServer(const TranslationServer &) = delete;
    TranslationServer &operator=(const TranslationServer &) = delete;

    /// The answer to one request for completion, whose JSON is `body`.
    /// @throws ConversionError "本地翻译引擎尚未就绪。" unless it is answered whole, with status 200, within 180
    /// seconds; Cancelled
    QByteArray complete(const QByteArray &body);

private:
    void waitUntilReady();
    bool isReady();

    LocalAIJob &m_job;
    quint16 m_port;
    QString m_key;
    HelperProcess m_process;
};
