#include "tests/support/ScriptedServer.h"

#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <sys/socket.h>

#include <algorithm>
#include <chrono>

namespace {

/// Hands raw connections on, so that they may become encrypted ones.
class Listener : public QTcpServer
{
public:
    using QTcpServer::QTcpServer;
    std::function<void(qintptr)> arrived;

protected:
    void incomingConnection(qintptr descriptor) override { arrived(descriptor); }
};

} // namespace

class ScriptedServer::Connection : public QObject
{
public:
    Connection(ScriptedServer &server, qintptr descriptor, QObject *parent)
        : QObject(parent)
        , m_server(server)
        , m_socket(this)
    {
        m_socket.setSocketDescriptor(descriptor);
        if (m_server.m_break == Break::onConnect)
            reset();
        else if (m_server.m_break != Break::stallOnConnect)
            serve();
    }

private:
    void serve()
    {
        connect(&m_socket, &QTcpSocket::readyRead, this, [this] { receive(); });
        connect(&m_socket, &QTcpSocket::bytesWritten, this, [this] {
            if (!m_pace.isActive() || m_reply.repeats <= 0)
                sendMore();
        });
        connect(&m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
        connect(&m_pace, &QTimer::timeout, this, [this] { sendMore(); });
        if (m_server.m_tls) {
            m_socket.setSslConfiguration(*m_server.m_tls);
            m_socket.startServerEncryption();
        }
    }

    void reset()
    {
        const linger atOnce{.l_onoff = 1, .l_linger = 0};
        setsockopt(int(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
        m_socket.abort();
        deleteLater();
    }

    void receive()
    {
        m_received += m_socket.readAll();
        if (m_server.m_break == Break::inHeaders)
            return reset();
        const qsizetype headEnd = m_received.indexOf("\r\n\r\n");
        if (headEnd < 0 || m_isAnswering)
            return;
        Request request;
        QList<QByteArray> lines = m_received.left(headEnd).split('\n');
        const QList<QByteArray> words = lines.takeFirst().split(' ');
        request.method = words.value(0);
        request.target = words.value(1);
        for (const QByteArray &line : lines) {
            const qsizetype colon = line.indexOf(':');
            request.headers[line.left(colon).toLower()] = line.mid(colon + 1).trimmed();
        }
        request.body = m_received.mid(headEnd + 4);
        if (request.body.size() < request.headers.value("content-length").toLongLong())
            return;
        m_isAnswering = true;
        {
            const std::lock_guard lock(m_server.m_mutex);
            m_server.m_requests.append(request);
        }
        m_server.m_changed.notify_all();
        m_reply = m_server.m_script(request);
        m_socket.write(m_reply.head + (m_reply.head.isEmpty() ? "" : "\r\n"));
        if (m_reply.pace > 0)
            m_pace.start(std::chrono::milliseconds(5));
        sendMore();
    }

    void sendMore()
    {
        constexpr qint64 ahead = 4 * 1024 * 1024; // bytes that may wait in the socket
        while (m_isAnswering && m_reply.repeats > 0 && m_socket.bytesToWrite() < ahead) {
            const qsizetype rest = m_reply.body.size() - m_at;
            const qsizetype size = m_reply.pace > 0 ? std::min(rest, m_reply.pace) : std::min<qsizetype>(rest, 1 << 20);
            m_socket.write(m_reply.body.constData() + m_at, size);
            m_at += size;
            if (m_at == m_reply.body.size()) {
                m_at = 0;
                --m_reply.repeats;
            }
            if (m_reply.pace > 0)
                break;
        }
        if (m_isAnswering && m_reply.repeats <= 0 && m_socket.bytesToWrite() == 0)
            end();
    }

    void end()
    {
        m_isAnswering = false;
        m_pace.stop();
        if (m_reply.end == Reply::End::close)
            m_socket.disconnectFromHost();
        else if (m_reply.end == Reply::End::reset)
            reset();
    }

    ScriptedServer &m_server;
    QSslSocket m_socket;
    QTimer m_pace;
    QByteArray m_received;
    Reply m_reply;
    qsizetype m_at = 0; ///< Bytes of the body sent in this round.
    bool m_isAnswering = false;
};

ScriptedServer::ScriptedServer(Script script, Break broken, std::optional<QSslConfiguration> tls)
    : m_script(std::move(script))
    , m_break(broken)
    , m_tls(std::move(tls))
{
    auto *const server = new Listener();
    m_server = server;
    server->moveToThread(&m_thread);
    server->arrived = [this](qintptr descriptor) {
        new Connection(*this, descriptor, m_server);
        {
            const std::lock_guard lock(m_mutex);
            ++m_connections;
        }
        m_changed.notify_all();
    };
    m_thread.start();
    QMetaObject::invokeMethod(
        server, [this] { m_server->listen(QHostAddress::LocalHost); }, Qt::BlockingQueuedConnection);
    m_port = m_server->serverPort();
}

ScriptedServer::~ScriptedServer()
{
    QMetaObject::invokeMethod(
        m_server, [this] { delete m_server; }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

QUrl ScriptedServer::url(const QString &path, const QString &host) const
{
    QUrl url;
    url.setScheme(m_tls ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(host);
    url.setPort(m_port);
    url.setPath(path);
    return url;
}

QList<ScriptedServer::Request> ScriptedServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

int ScriptedServer::connections() const
{
    const std::lock_guard lock(m_mutex);
    return m_connections;
}

bool ScriptedServer::waitForConnections(int count) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return m_connections >= count; });
}

ScriptedServer::Reply ScriptedServer::reply(int status, const QByteArray &body, const QByteArray &headers)
{
    return {.head = "HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\nConnection: close\r\nContent-Length: " +
                    QByteArray::number(body.size()) + "\r\n" + headers,
            .body = body};
}
