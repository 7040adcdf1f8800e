#include "app/window/SingleInstance.h"

#include "app/platform/Platform.h"
#include "core/ConversionError.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <unistd.h>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

// A message is the number of its bytes, then links in their encoded form, which knows no line feed, a line each.
constexpr qint64 sizeBytes = sizeof(quint32);
constexpr qint64 maximumBytes = 1024 * 1024;
constexpr qsizetype maximumPeers = 16;
constexpr char confirmation = '+';

/// Anybody may take a name and connect to one.
bool belongsToUser(const QLocalSocket &peer)
{
    return Platform::belongsToUser(peer.socketDescriptor());
}

QByteArray encode(const QList<QUrl> &urls)
{
    QByteArray links;
    for (const QUrl &url : urls)
        links += url.toEncoded() + '\n';
    if (links.size() > maximumBytes)
        throw ConversionError(u"一次打开的文件太多。"_s);
    QByteArray message(sizeBytes, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(links.size()), message.data());
    return message + links;
}

/// Absent when these are no links.
std::optional<QList<QUrl>> decode(const QByteArray &links)
{
    QList<QUrl> urls;
    if (links.isEmpty())
        return urls;
    if (!links.endsWith('\n'))
        return std::nullopt;
    for (const QByteArray &link : links.chopped(1).split('\n')) {
        const QUrl url = QUrl::fromEncoded(link, QUrl::StrictMode);
        if (!url.isValid() || url.isRelative())
            return std::nullopt;
        urls += url;
    }
    return urls;
}

enum class Answer
{
    confirmed,
    nobodyThere,
    foreign, ///< Somebody else has taken the name.
    none,    ///< The other process went away or let the time run out.
};

Answer handOver(const QByteArray &message, const QDeadlineTimer &deadline)
{
    const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(SingleInstance::name());
    if (!socket.waitForConnected(left()))
        return Answer::nobodyThere;
    if (!belongsToUser(socket))
        return Answer::foreign;
    socket.write(message);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(left()))
            return Answer::none;
    }
    while (socket.bytesAvailable() == 0) {
        if (!socket.waitForReadyRead(left()))
            return Answer::none;
    }
    return socket.read(1) == QByteArray(1, confirmation) ? Answer::confirmed : Answer::none;
}

} // namespace

QString SingleInstance::name()
{
    const QByteArray home = QCryptographicHash::hash(QDir::homePath().toUtf8(), QCryptographicHash::Sha256).toHex();
    return u"local.lintora.workflow-%1-%2"_s.arg(getuid()).arg(QString::fromLatin1(home.first(16)));
}

SingleInstance::SingleInstance(std::chrono::milliseconds patience, QObject *parent)
    : QObject(parent)
    , m_patience(patience)
{
    m_server.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *const peer = m_server.nextPendingConnection())
            serve(*peer);
    });
}

SingleInstance::Launch SingleInstance::launch(const QList<QUrl> &urls)
{
    if (Platform::systemRunsProgramOnce())
        return Launch::first;
    const QByteArray message = encode(urls);
    const QDeadlineTimer deadline(m_patience);
    do {
        // One of several that start at once gets the name; the others find it here on a later round.
        if (m_server.listen(name()))
            return Launch::first;
        if (m_server.serverError() != QAbstractSocket::AddressInUseError)
            return Launch::first; // no later launch can reach it, which is better than not to run at all
        switch (handOver(message, deadline)) {
        case Answer::confirmed:
            return Launch::handedOver;
        case Answer::foreign:
            return Launch::first; // as above
        case Answer::nobodyThere:
        case Answer::none:
            // It has just begun or is about to end.
            QThread::msleep(10);
        }
    } while (!deadline.hasExpired());
    throw ConversionError(u"VELMORA 字幕助手已在运行，但没有回应。"_s);
}

void SingleInstance::serve(QLocalSocket &peer)
{
    connect(&peer, &QLocalSocket::disconnected, &peer, &QObject::deleteLater);
    if (m_peers == maximumPeers || !belongsToUser(peer)) {
        peer.abort();
        return;
    }
    ++m_peers;
    connect(&peer, &QObject::destroyed, this, [this] { --m_peers; });
    peer.setReadBufferSize(sizeBytes + maximumBytes);
    connect(&peer, &QLocalSocket::readyRead, this, [this, &peer] { read(peer); });
    QTimer::singleShot(m_patience, &peer, [&peer] { peer.abort(); });
    read(peer);
}

void SingleInstance::read(QLocalSocket &peer)
{
    if (peer.bytesAvailable() < sizeBytes)
        return;
    const auto size = static_cast<qint64>(qFromBigEndian<quint32>(peer.peek(sizeBytes).constData()));
    if (size <= maximumBytes && peer.bytesAvailable() < sizeBytes + size)
        return;
    disconnect(&peer, &QLocalSocket::readyRead, this, nullptr);
    const auto urls =
        size <= maximumBytes ? decode(peer.read(sizeBytes + size).sliced(sizeBytes)) : std::optional<QList<QUrl>>();
    if (!urls) {
        peer.abort();
        return;
    }
    peer.write(QByteArray(1, confirmation));
    peer.disconnectFromServer(); // once the confirmation is out
    Q_EMIT received(*urls);
}
