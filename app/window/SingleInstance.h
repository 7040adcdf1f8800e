#pragma once

#include <QList>
#include <QLocalServer>
#include <QObject>
#include <QUrl>

#include <chrono>

/// Lets the program run once for a user and a home folder: a later launch hands its files and links to the running one.
///
/// The name under which the running program listens is its claim to be the first. The kernel gives it to one process
/// only and takes it back however that process ends, so that nothing is left behind to clear away. Only processes of
/// the same user are listened and spoken to.
///
/// Does nothing where the system itself runs the program once.
///
/// Must live longer than what the next launch reads: it takes the place once this object is gone.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Launch
    {
        first,     ///< This is the running program from now on.
        handedOver ///< Another one runs and has confirmed that it has the links.
    };

    /// The name that the running program of this user and home folder listens under, in the abstract namespace.
    static QString name();

    /// `patience`: how long another process may take to say or to answer something.
    explicit SingleInstance(std::chrono::milliseconds patience = std::chrono::seconds(5), QObject *parent = nullptr);

    /// Becomes the running program, or hands `urls` over to it. Waits no longer than `patience`. Links may be none: the
    /// running program is to show itself then.
    /// @throws ConversionError when a program runs that does not answer, or the links are too many.
    Launch launch(const QList<QUrl> &urls);

Q_SIGNALS:
    /// A later launch has handed over these links.
    void received(const QList<QUrl> &urls);

private:
    void serve(QLocalSocket &peer);
    void read(QLocalSocket &peer);

    const std::chrono::milliseconds m_patience;
    qsizetype m_peers = 0; ///< That are being listened to.
    QLocalServer m_server;
};
