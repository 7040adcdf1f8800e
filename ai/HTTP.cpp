#include "ai/HTTP.h"

#include "ai/HTTPTransfer.h"
#include "core/Job.h"
#include "core/PlatformError.h"

#include <QBuffer>
#include <QFile>
#include <QHostAddress>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace HTTP {

namespace {

/// Thrown when an answer has become too long to be taken.
struct TooLong
{};

/// Thrown when the answer is another address.
struct Onward
{
    QUrl url;
};

Answer exchange(const Request &request, QIODevice *body, Job &job, const Watch &watch)
{
    Answer answer;
    QByteArray received;
    const Sink sink{.begin = [&](const Head &head) { answer.head = head; },
                    .take =
                        [&](QByteArrayView block) {
                            if (received.size() + block.size() > request.largestAnswer)
                                throw TooLong();
                            received.append(block);
                        }};
    try {
        HTTPTransfer(request, watch, sink).run(body, job);
        answer.body = std::move(received);
    } catch (const TooLong &) {
        job.check();
    }
    return answer;
}

bool isRedirect(int status)
{
    constexpr auto redirects = std::to_array({301, 302, 303, 307, 308});
    return std::ranges::find(redirects, status) != redirects.end();
}

/// Where a download may go on after `head`; absent when it may not.
std::optional<QUrl> redirected(const QUrl &from, const Head &head)
{
    const QByteArray location = head.value("location");
    if (!isRedirect(head.status) || location.isEmpty())
        return std::nullopt;
    const QUrl to = from.resolved(QUrl::fromEncoded(location));
    const bool isSecure = to.scheme() == u"https";
    const bool staysHere = to.scheme() == u"http" && isLoopback(from) && isLoopback(to);
    return to.isValid() && (isSecure || staysHere) ? std::optional(to) : std::nullopt;
}

} // namespace

QByteArray Head::value(QByteArrayView name) const
{
    const auto found = std::ranges::find_if(
        headers, [&](const Header &header) { return header.name.compare(name, Qt::CaseInsensitive) == 0; });
    return found == headers.end() ? QByteArray() : found->value;
}

Answer get(const Request &request, Job &job, const Watch &watch)
{
    return exchange(request, nullptr, job, watch);
}

Answer post(const Request &request, const QByteArray &body, Job &job, const Watch &watch)
{
    QBuffer source;
    source.setData(body);
    source.open(QIODevice::ReadOnly);
    return exchange(request, &source, job, watch);
}

Answer postFile(const Request &request, const QString &path, Job &job, const Watch &watch)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw PlatformError(source.errorString());
    return exchange(request, &source, job, watch);
}

Head download(const Request &request, Job &job, const Sink &sink)
{
    constexpr int mostRedirects = 5;
    Request next = request;
    for (int redirects = 0;; ++redirects) {
        // The few words that come with a redirect are nobody's: the call ends at its head.
        const Sink finalOnly{.begin =
                                 [&](const Head &head) {
                                     if (const auto to = redirected(next.url, head); to && redirects < mostRedirects)
                                         throw Onward{*to};
                                     sink.begin(head);
                                 },
                             .take = sink.take};
        try {
            return HTTPTransfer(next, {}, finalOnly).run(nullptr, job);
        } catch (const Onward &onward) {
            next.url = onward.url;
        }
    }
}

bool isLoopback(const QUrl &url)
{
    const QString host = url.host().toLower();
    return host == u"localhost" || QHostAddress(host).isLoopback();
}

} // namespace HTTP
