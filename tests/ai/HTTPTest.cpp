#include "ai/HTTP.h"

#include "core/Cancelled.h"
#include "core/Job.h"
#include "core/PlatformError.h"
#include "tests/support/ScriptedServer.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTemporaryFile>

#include <gmock/gmock.h>
#include <netdb.h>
#include <sys/socket.h>

#include <dlfcn.h>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;

namespace {

std::atomic<bool> isNameServerStuck = false;

ScriptedServer::Script always(const Reply &reply)
{
    return [reply](const ScriptedServer::Request &) { return reply; };
}

} // namespace

/// Stands in front of the system's own: a name server that does not answer, for one name.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **result)
{
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (name != nullptr && QByteArrayView(name) == "stuck.test") {
        isNameServerStuck.wait(true);
        return EAI_AGAIN;
    }
    return real(name, service, hints, result);
}

TEST(HTTP, sends_what_it_is_given_and_returns_what_comes_back)
{
    const ScriptedServer server(always(ScriptedServer::reply(201, "已收到", "X-Kind: Test\r\n")));
    Job job;
    double share = 0;
    const HTTP::Answer answer =
        HTTP::post({.url = server.url(u"/v1/chat"_s),
                    .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer secret"}}},
                   "{\"a\":1}", job, {.sent = [&](double now) { share = now; }});
    EXPECT_EQ(answer.head.status, 201);
    EXPECT_EQ(answer.head.value("x-kind"), "Test");
    EXPECT_EQ(answer.body, "已收到");
    EXPECT_EQ(share, 1);
    ASSERT_EQ(server.requests().size(), 1);
    const ScriptedServer::Request seen = server.requests().first();
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.target, "/v1/chat");
    EXPECT_EQ(seen.body, "{\"a\":1}");
    EXPECT_EQ(seen.headers["content-type"], "application/json");
    EXPECT_EQ(seen.headers["authorization"], "Bearer secret");
}

TEST(HTTP, sends_a_file_piece_by_piece_and_tells_how_far_it_is)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    QByteArray content(9'000'001, 'a');
    content[4'000'000] = 'b';
    file.write(content);
    file.flush();
    const ScriptedServer server(always(ScriptedServer::reply(200, "ok")));
    Job job;
    QList<double> shares;
    const HTTP::Answer answer =
        HTTP::postFile({.url = server.url(u"/"_s), .headers = {{"Content-Type", "audio/wav"}}}, file.fileName(), job,
                       {.sent = [&](double share) { shares.append(share); }});
    EXPECT_EQ(answer.body, "ok");
    EXPECT_TRUE(server.requests().value(0).body == content);
    EXPECT_GT(shares.size(), 5);
    EXPECT_TRUE(std::ranges::is_sorted(shares));
    EXPECT_EQ(shares.last(), 1);
}

TEST(HTTP, every_status_is_an_answer_with_its_body)
{
    for (const int status : {200, 204, 302, 307, 400, 401, 403, 404, 407, 413, 418, 429, 500, 503, 599}) {
        const QByteArray body = status == 204 ? "" : "reason";
        const ScriptedServer server(
            always(ScriptedServer::reply(status, body, "Location: /other\r\nWWW-Authenticate: Basic realm=\"x\"\r\n")));
        Job job;
        for (const bool hasBody : {false, true}) {
            const HTTP::Request request{.url = server.url(u"/"_s), .headers = {{"Content-Type", "text/plain"}}};
            const HTTP::Answer answer = hasBody ? HTTP::post(request, "x", job) : HTTP::get(request, job);
            EXPECT_EQ(answer.head.status, status);
            EXPECT_EQ(answer.body, body) << status;
        }
        EXPECT_EQ(server.requests().size(), 2) << status;
    }
}

TEST(HTTP, an_answer_is_taken_up_to_its_limit_and_not_a_byte_further)
{
    for (const bool isChunked : {false, true}) {
        Reply endless{.head = "HTTP/1.1 200 OK\r\n", .body = QByteArray(65'536, 'x'), .repeats = 1'000'000'000};
        if (isChunked) {
            endless.head += "Transfer-Encoding: chunked\r\n";
            endless.body = "10000\r\n" + endless.body + "\r\n";
        }
        const ScriptedServer server(always(endless));
        Job job;
        const HTTP::Answer answer = HTTP::get({.url = server.url(u"/"_s), .largestAnswer = 1'000'000}, job);
        EXPECT_EQ(answer.head.status, 200);
        EXPECT_FALSE(answer.body);
    }
    const ScriptedServer server(always(ScriptedServer::reply(200, "12345")));
    Job job;
    EXPECT_EQ(HTTP::get({.url = server.url(u"/"_s), .largestAnswer = 5}, job).body, "12345");
    EXPECT_FALSE(HTTP::get({.url = server.url(u"/"_s), .largestAnswer = 4}, job).body);
}

TEST(HTTP, a_broken_answer_is_an_error_and_no_body_is_sent_twice)
{
    using Break = ScriptedServer::Break;
    struct Row
    {
        const char *name;
        Break broken;
        Reply reply;
    };
    const Reply whole = ScriptedServer::reply(200, "whole");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n";
    const Row rows[] = {
        {"at once", Break::onConnect, whole},
        {"while the request is sent", Break::inHeaders, whole},
        {"instead of an answer", Break::never, {.head = {}, .body = {}, .end = Reply::End::reset}},
        {"closed instead of an answer", Break::never, {.head = {}, .body = {}}},
        {"in the status line", Break::never, {.head = {}, .body = "HTTP/1.", .end = Reply::End::reset}},
        {"in the body", Break::never, {.head = head, .body = "12345", .end = Reply::End::reset}},
        {"closed in the body", Break::never, {.head = head, .body = "12345"}},
        {"no HTTP", Break::never, {.head = {}, .body = "220 mail.test ESMTP\r\n\r\n"}},
    };
    for (const Row &row : rows) {
        const ScriptedServer server(always(row.reply), row.broken);
        Job job;
        const HTTP::Request request{.url = server.url(u"/"_s), .headers = {{"Content-Type", "text/plain"}}};
        try {
            HTTP::post(request, "paid for", job);
            ADD_FAILURE() << row.name;
        } catch (const PlatformError &error) {
            EXPECT_FALSE(error.description().isEmpty()) << row.name;
        }
        EXPECT_LE(server.requests().size(), 1) << row.name;
    }
}

TEST(HTTP, silence_and_endless_talk_end_in_time)
{
    const Reply silent{.head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n", .body = "12345", .end = Reply::End::stall};
    const ScriptedServer stalled(always(silent));
    const ScriptedServer mute(always({}), ScriptedServer::Break::stallOnConnect);
    const ScriptedServer talkative(
        always({.head = "HTTP/1.1 200 OK\r\n", .body = "x", .repeats = 1'000'000'000, .pace = 1}));
    using namespace std::chrono_literals;
    Job job;
    EXPECT_THROW(HTTP::get({.url = stalled.url(u"/"_s), .silence = 100ms}, job), PlatformError);
    EXPECT_THROW(HTTP::get({.url = mute.url(u"/"_s), .silence = 100ms}, job), PlatformError);
    EXPECT_THROW(HTTP::get({.url = talkative.url(u"/"_s), .silence = 60s, .whole = 300ms}, job), PlatformError);
}

TEST(HTTP, what_is_no_web_address_is_refused)
{
    Job job;
    for (const char *address : {"file:///etc/passwd", "data:text/plain,x", "ftp://127.0.0.1/", "qrc:/x", "//host/", ""})
        EXPECT_THROW(HTTP::get({.url = QUrl(QString::fromLatin1(address))}, job), PlatformError) << address;
}

namespace {

/// A listening socket whose queue is full: whoever connects waits.
class FullQueue
{
public:
    FullQueue()
    {
        m_server.setListenBacklogSize(1);
        m_server.listen(QHostAddress::LocalHost);
        m_server.pauseAccepting();
        ::listen(int(m_server.socketDescriptor()), 0);
        for (auto &socket : m_sockets) {
            socket = std::make_unique<QTcpSocket>();
            socket->connectToHost(QHostAddress(QHostAddress::LocalHost), m_server.serverPort());
            socket->waitForConnected(20);
        }
    }
    QUrl url() const { return QUrl(u"http://127.0.0.1:%1/"_s.arg(m_server.serverPort())); }

private:
    QTcpServer m_server;
    std::array<std::unique_ptr<QTcpSocket>, 4> m_sockets;
};

/// Starts a request, cancels it from another thread while it waits, and says how long that took to be felt.
qint64 cancelledAfter(const QUrl &url)
{
    Job job;
    std::thread canceller;
    QElapsedTimer sinceCancelling;
    const HTTP::Watch watch{.waiting = [&](std::chrono::milliseconds) {
        if (canceller.joinable())
            return;
        canceller = std::thread([&] {
            sinceCancelling.start();
            job.cancel();
        });
    }};
    EXPECT_THROW(HTTP::get({.url = url}, job, watch), Cancelled);
    if (!canceller.joinable())
        return -1;
    canceller.join();
    return sinceCancelling.elapsed();
}

} // namespace

TEST(HTTP, cancelling_is_felt_at_once_wherever_the_request_is)
{
    using Break = ScriptedServer::Break;
    constexpr qint64 limit = 1'000; // milliseconds; 100 are promised, on a machine that has nothing else to do
    const ScriptedServer mute(always({}), Break::stallOnConnect);
    const ScriptedServer answerless(always({.head = {}, .body = {}, .end = Reply::End::stall}));
    const ScriptedServer stalled(
        always({.head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n", .body = "12345", .end = Reply::End::stall}));
    const FullQueue full;
    QUrl encrypted = mute.url(u"/"_s);
    encrypted.setScheme(u"https"_s);
    isNameServerStuck = true;
    const std::pair<const char *, QUrl> rows[] = {{"name", QUrl(u"http://stuck.test/"_s)},
                                                  {"connection", full.url()},
                                                  {"handshake", encrypted},
                                                  {"answer", answerless.url(u"/"_s)},
                                                  {"body", stalled.url(u"/"_s)}};
    for (const auto &[name, url] : rows) {
        const qint64 taken = cancelledAfter(url);
        EXPECT_GE(taken, 0) << name << " did not wait";
        EXPECT_LT(taken, limit) << name;
        RecordProperty(std::string("milliseconds_in_") + name, int(taken));
    }
    isNameServerStuck = false;
    isNameServerStuck.notify_all();
    Job cancelled;
    cancelled.cancel();
    EXPECT_THROW(HTTP::get({.url = answerless.url(u"/"_s)}, cancelled), Cancelled);
    EXPECT_EQ(answerless.connections(), 1);
}
