#include "ai/HTTPTransfer.h"

#include "ai/HTTPBody.h"
#include "core/Job.h"
#include "core/PlatformError.h"

#include <QCoreApplication>
#include <QNetworkProxyFactory>
#include <QNetworkRequest>
#include <QSslError>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype blockSize = 1024 * 1024;  // bytes
constexpr qint64 readAhead = 4 * 1024 * 1024; // bytes that may wait for the sink
constexpr auto tickInterval = std::chrono::seconds(1);
constexpr int firstErrorStatus = 400;

/// The system's proxies; none on the way to this machine, whatever the system says.
class ProxyFactory : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        if (HTTP::isLoopback(query.url()))
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        return systemProxyForQuery(query);
    }
};

QNetworkRequest asSent(const HTTP::Request &request)
{
    QNetworkRequest sent(request.url);
    sent.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    sent.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    sent.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    sent.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    sent.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // Over HTTP/2 a body that cannot be sent twice and a limit on what is read ahead are not honoured.
    sent.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // Otherwise it would be gathered in memory before the first byte is sent.
    sent.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    // A small packed answer could unfold into a huge one.
    sent.setRawHeader("Accept-Encoding", "identity");
    for (const HTTP::Header &header : request.headers)
        sent.setRawHeader(header.name, header.value);
    return sent;
}

/// A sentence of Qt's own, in the language that is loaded.
QString socketText(const char *sentence)
{
    return QCoreApplication::translate("QAbstractSocket", sentence);
}

} // namespace

HTTPTransfer::HTTPTransfer(const HTTP::Request &request, const HTTP::Watch &watch, const HTTP::Sink &sink)
    : m_request(request)
    , m_watch(watch)
    , m_sink(sink)
    , m_block(std::make_unique_for_overwrite<char[]>(blockSize))
{
    m_manager.setProxyFactory(new ProxyFactory); // which the manager owns
}

template <class Step>
void HTTPTransfer::guarded(Step &&step)
{
    // An exception must not pass through the event loop, and after the first nothing counts any more.
    if (m_failure)
        return;
    try {
        step();
    } catch (...) {
        m_failure = std::current_exception();
        m_loop.quit();
    }
}

HTTP::Head HTTPTransfer::run(QIODevice *body, Job &job)
{
    job.check();
    const QString scheme = m_request.url.scheme();
    if (!m_request.url.isValid() || (scheme != u"http" && scheme != u"https"))
        throw PlatformError(
            QCoreApplication::translate("QNetworkAccessManager", "Protocol \"%1\" is unknown").arg(scheme));
    std::unique_ptr<HTTPBody> once;
    if (body != nullptr)
        once = std::make_unique<HTTPBody>(*body, [this] {
            guarded([] { throw PlatformError(socketText("The remote host closed the connection")); });
        });
    start(once.get());
    {
        const Job::OnCancel end(
            job, [this] { QMetaObject::invokeMethod(&m_loop, &QEventLoop::quit, Qt::QueuedConnection); });
        m_loop.exec();
    }
    m_reply->disconnect(&m_loop);
    m_reply->abort();
    m_reply.reset();
    job.check();
    if (m_failure)
        std::rethrow_exception(m_failure);
    return std::move(m_head);
}

void HTTPTransfer::start(QIODevice *body)
{
    QNetworkRequest request = asSent(m_request);
    if (body != nullptr) {
        request.setHeader(QNetworkRequest::ContentLengthHeader, body->bytesAvailable());
        m_reply.reset(m_manager.post(request, body));
    } else {
        m_reply.reset(m_manager.get(request));
    }
    m_reply->setReadBufferSize(readAhead);
    listen();
    m_elapsed.start();
    m_silence.setSingleShot(true);
    m_silence.start(m_request.silence);
    if (m_request.whole) {
        m_whole.setSingleShot(true);
        m_whole.start(*m_request.whole);
    }
    if (m_watch.waiting)
        m_tick.start(tickInterval);
}

void HTTPTransfer::listen()
{
    QNetworkReply *const reply = m_reply.get();
    const auto expire = [this] { guarded([] { throw PlatformError(socketText("Socket operation timed out")); }); };
    QObject::connect(&m_silence, &QTimer::timeout, &m_loop, expire);
    QObject::connect(&m_whole, &QTimer::timeout, &m_loop, expire);
    QObject::connect(&m_tick, &QTimer::timeout, &m_loop,
                     [this] { guarded([this] { m_watch.waiting(std::chrono::milliseconds(m_elapsed.elapsed())); }); });
    QObject::connect(reply, &QNetworkReply::uploadProgress, &m_loop, [this](qint64 sent, qint64 total) {
        m_silence.start();
        guarded([&] {
            if (m_watch.sent && total > 0)
                m_watch.sent(double(sent) / double(total));
        });
    });
    QObject::connect(reply, &QNetworkReply::sslErrors, &m_loop, [this](const QList<QSslError> &errors) {
        for (const QSslError &error : errors)
            m_certificateErrors.append(error.errorString());
    });
    QObject::connect(reply, &QNetworkReply::encrypted, &m_loop, [this] { m_silence.start(); });
    QObject::connect(reply, &QNetworkReply::readyRead, &m_loop, [this] {
        m_silence.start();
        guarded([this] { takeBody(); });
    });
    QObject::connect(reply, &QNetworkReply::finished, &m_loop, [this] {
        guarded([this] { finish(); });
        m_loop.quit();
    });
}

void HTTPTransfer::takeHead()
{
    if (m_head.status != 0)
        return;
    m_head.status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    for (const auto &[name, value] : m_reply->rawHeaderPairs())
        m_head.headers.append({.name = name, .value = value});
    if (m_sink.begin)
        m_sink.begin(m_head);
}

void HTTPTransfer::takeBody()
{
    takeHead();
    for (qint64 size = 0; (size = m_reply->read(m_block.get(), blockSize)) > 0;) {
        m_received += size;
        m_sink.take(QByteArrayView(m_block.get(), size));
    }
}

void HTTPTransfer::finish()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool isAnswered = status >= firstErrorStatus || m_reply->error() == QNetworkReply::NoError;
    if (status != 0 && isAnswered) {
        takeBody();
        // The library passes some connections that broke in a body for its end.
        const QByteArray promised = m_head.value("content-length");
        if (status < firstErrorStatus && !promised.isEmpty() && m_received < promised.toLongLong())
            throw PlatformError(socketText("The remote host closed the connection"));
        return;
    }
    if (!m_certificateErrors.isEmpty())
        throw PlatformError(m_certificateErrors.join(u'\n'));
    throw PlatformError(m_reply->errorString());
}
