#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>

class Job;

/// Requests that keep the calling worker until they are answered, refused or cancelled.
///
/// Cancelling the job ends a call within 100 ms, whatever it waits for: a name, a connection, a handshake, the rest of
/// an answer. No cookie and no password is kept, and no body is sent twice. The system's proxy is used, except for
/// this machine itself. Certificates must be trusted and bear the host's name.
///
/// A call returns for every HTTP status. It throws PlatformError, in the platform's own description, when there is no
/// whole answer: an unknown host, a refused or broken connection, a certificate that is not trusted, a time-out.
/// Whoever reads an answer still has to see whether it is complete: one that is sent in chunks may break off unnoticed.
namespace HTTP {

struct Header
{
    QByteArray name;
    QByteArray value;
};

struct Request
{
    QUrl url;                   ///< http or https; anything else is refused as a PlatformError.
    QList<Header> headers = {}; ///< A key goes here and never into the address, which may be shown.

    /// Longest time without a byte in either direction.
    std::chrono::milliseconds silence = std::chrono::seconds(60);
    /// Longest time for everything; without it a talkative server may take as long as it likes.
    std::optional<std::chrono::milliseconds> whole = {};
    /// Bytes of the longest answer that is taken; the next one ends the call. Downloads have no such limit.
    qint64 largestAnswer = 8 * 1024 * 1024;
};

/// What comes before the body of an answer.
struct Head
{
    int status = 0;
    QList<Header> headers;

    /// The first header called `name`, in any case; null when there is none.
    QByteArray value(QByteArrayView name) const;
};

struct Answer
{
    Head head;
    std::optional<QByteArray> body; ///< Absent when it was longer than the request allows.
};

/// What is told while a call runs, on the thread that called. What these throw ends the call and passes through it.
struct Watch
{
    /// The share of the request's body that has been handed to the network, 0 to 1. Never told for an empty one.
    std::function<void(double share)> sent = {};
    /// How long the call has taken, about once a second.
    std::function<void(std::chrono::milliseconds elapsed)> waiting = {};
};

/// Asks without a body. No redirect is followed: it comes back as the answer. @throws PlatformError, Cancelled
Answer get(const Request &request, Job &job, const Watch &watch = {});

/// Sends `body`; the headers say what it is. No redirect is followed, so that a key never reaches another host.
/// @throws PlatformError, Cancelled
Answer post(const Request &request, const QByteArray &body, Job &job, const Watch &watch = {});

/// The same with a body that is read from the file at `path` while it is sent, and never stands in memory.
/// @throws PlatformError, also when the file cannot be read; Cancelled
Answer postFile(const Request &request, const QString &path, Job &job, const Watch &watch = {});

/// Receives an answer while it comes in, on the thread that called. What these throw ends the call and passes through.
struct Sink
{
    std::function<void(const Head &head)> begin = {}; ///< Once, before the first block.
    std::function<void(QByteArrayView block)> take = {};
};

/// Asks for something large, which `sink` takes in blocks. At most five redirects are followed, to https alone or from
/// this machine to itself; of any other the head is the answer. The headers go along with every redirect: there must be
/// no key among them. @throws PlatformError, Cancelled
Head download(const Request &request, Job &job, const Sink &sink);

/// Whether `url` names this machine by its usual names or a loopback address.
bool isLoopback(const QUrl &url);

} // namespace HTTP
