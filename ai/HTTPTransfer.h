#pragma once

#include "ai/HTTP.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <exception>
#include <memory>

/// One request on its way, from the first look at the address to the last byte of the answer. Used once.
///
/// An event loop of its own carries it on the calling thread, so that nothing but the network waits for anything.
class HTTPTransfer
{
public:
    HTTPTransfer(const HTTP::Request &request, const HTTP::Watch &watch, const HTTP::Sink &sink);

    /// Sends the request, with `body` unless it is null, and returns when the answer is whole. A body is read from the
    /// front to the end once. @throws PlatformError, Cancelled, and what the watch and the sink throw
    HTTP::Head run(QIODevice *body, Job &job);

private:
    void start(QIODevice *body);
    void listen();
    void takeHead();
    void takeBody();
    void finish();
    /// Runs `step`; what it throws ends the transfer and is thrown by run().
    template <class Step>
    void guarded(Step &&step);

    const HTTP::Request &m_request;
    const HTTP::Watch &m_watch;
    const HTTP::Sink &m_sink;
    QEventLoop m_loop;
    QNetworkAccessManager m_manager;
    std::unique_ptr<QNetworkReply> m_reply;
    QTimer m_silence;
    QTimer m_whole;
    QTimer m_tick;
    QElapsedTimer m_elapsed;
    std::unique_ptr<char[]> m_block;
    HTTP::Head m_head;
    qint64 m_received = 0; ///< Bytes of the body.
    QStringList m_certificateErrors;
    std::exception_ptr m_failure;
};
