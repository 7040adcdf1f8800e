#pragma once

#include "ai/models/LocalModel.h"
#include "core/Progress.h"

#include <QElapsedTimer>
#include <QList>

class LocalAIJob;
class PartialDownload;

/// One download of a model: from the first of several hosts that has it, on from where an earlier one stopped, checked
/// and put in its place.
///
/// Only the digest decides whether what arrived is the model, so that any mirror may be asked. Whatever happens, a
/// model that is there stays as it was until its successor is complete.
class LocalModelDownload
{
public:
    /// `hosts` are asked in their order; none means LocalModels::defaultHosts().
    LocalModelDownload(LocalModel model, QList<QUrl> hosts, LocalAIJob &job, ProgressReport progress);

    /// Returns when the model is in its place. What has arrived is kept when this fails or is cancelled.
    /// @throws ConversionError "模型下载失败，请检查网络后重试。", "模型下载不完整，请重新下载。",
    /// "模型校验未通过，请重新下载。", or as LocalModels::checkDownloadSpace and moveIntoPlace do
    /// @throws PlatformError when the models folder cannot be made or written to; Cancelled
    void download();

private:
    enum class Outcome
    {
        whole,     ///< As many bytes are there as the model has.
        broken,    ///< The connection was.
        misplaced, ///< The server does not go on from where we are.
    };

    void checkSpace() const;
    void obtain(const QUrl &host, PartialDownload &partial);
    void complete(const QUrl &host, PartialDownload &partial);
    Outcome request(const QUrl &url, PartialDownload &partial, bool fromStart);
    void tell(qint64 written);

    LocalModel m_model;
    QList<QUrl> m_hosts;
    LocalAIJob &m_job;
    ProgressReport m_progress;
    qint64 m_lastPercent = -1;
    qint64 m_writtenBefore = 0; ///< Bytes that were there when the clock started.
    QElapsedTimer m_clock;
};
