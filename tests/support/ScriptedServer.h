#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QString>
#include <QThread>
#include <QUrl>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

class QTcpServer;

/// An HTTP server on this machine that answers as a test tells it to, on a thread of its own.
class ScriptedServer
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray target;
        QMap<QByteArray, QByteArray> headers; ///< Names in small letters.
        QByteArray body;
    };

    struct Reply
    {
        /// What happens when everything has been sent.
        enum class End
        {
            close,
            reset, ///< The connection breaks.
            stall, ///< Nothing more comes, and the connection stays.
        };

        QByteArray head = {}; ///< Status line and headers, each line with its end, without the empty line.
        QByteArray body = {};
        End end = End::close;
        qint64 repeats = 1; ///< How often the body is sent.
        qsizetype pace = 0; ///< Bytes every five milliseconds; 0 is as fast as it goes.
    };

    /// Where connections break before any answer.
    enum class Break
    {
        never,
        onConnect,
        inHeaders,      ///< When the first bytes have come.
        stallOnConnect, ///< Nothing is ever read or said.
    };

    using Script = std::function<Reply(const Request &)>;

    explicit ScriptedServer(Script script, Break broken = Break::never, std::optional<QSslConfiguration> tls = {});
    ~ScriptedServer();
    Q_DISABLE_COPY_MOVE(ScriptedServer)

    /// http or https, on 127.0.0.1 unless another name of this machine is given.
    QUrl url(const QString &path, const QString &host = QStringLiteral("127.0.0.1")) const;

    QList<Request> requests() const; ///< So far, in their order.
    int connections() const;         ///< So far.
    /// Waits until `count` connections have come. Fails the wait after 20 s by returning false.
    bool waitForConnections(int count) const;

    /// A whole answer with its length.
    static Reply reply(int status, const QByteArray &body, const QByteArray &headers = {});

private:
    class Connection;

    Script m_script;
    Break m_break;
    std::optional<QSslConfiguration> m_tls;
    QThread m_thread;
    QTcpServer *m_server = nullptr; ///< Lives on the thread.
    quint16 m_port = 0;
    mutable std::mutex m_mutex; ///< Guards what follows.
    mutable std::condition_variable m_changed;
    QList<Request> m_requests;
    int m_connections = 0;
};
