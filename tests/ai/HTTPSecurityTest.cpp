#include "ai/HTTP.h"

#include "core/Job.h"
#include "core/PlatformError.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/TestCertificate.h"

#include <QScopeGuard>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using ::testing::Contains;
using ::testing::Not;

namespace {

ScriptedServer::Script always(const Reply &reply)
{
    return [reply](const ScriptedServer::Request &) { return reply; };
}

Reply redirect(const QByteArray &to, int status = 307)
{
    return ScriptedServer::reply(status, "moved", "Location: " + to + "\r\n");
}

QString refusal(const QUrl &url)
{
    Job job;
    try {
        HTTP::get({.url = url, .headers = {{"Authorization", "Bearer secret"}}}, job);
        return {};
    } catch (const PlatformError &error) {
        return error.description();
    }
}

/// Trusts `certificate` as long as it lives.
class Trust
{
public:
    explicit Trust(const QSslCertificate &certificate)
    {
        QSslConfiguration trusting = m_before;
        trusting.addCaCertificate(certificate);
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    ~Trust() { QSslConfiguration::setDefaultConfiguration(m_before); }
    Q_DISABLE_COPY_MOVE(Trust)

private:
    QSslConfiguration m_before = QSslConfiguration::defaultConfiguration();
};

struct Downloaded
{
    int status = 0;
    QByteArray body;
};

Downloaded download(const QUrl &url)
{
    Job job;
    Downloaded result;
    result.status = HTTP::download({.url = url, .headers = {{"Range", "bytes=5-"}}}, job,
                                   {.begin = [](const HTTP::Head &) {},
                                    .take = [&](QByteArrayView block) { result.body.append(block); }})
                        .status;
    return result;
}

} // namespace

TEST(HTTPSecurity, a_key_never_reaches_the_host_that_a_redirect_names)
{
    const ScriptedServer thief(always(ScriptedServer::reply(200, "thanks")));
    for (const int status : {301, 302, 303, 307, 308}) {
        const ScriptedServer server(always(redirect(thief.url(u"/"_s, u"localhost"_s).toEncoded(), status)));
        Job job;
        const HTTP::Request request{.url = server.url(u"/"_s),
                                    .headers = {{"Authorization", "Bearer secret"}, {"Content-Type", "text/plain"}}};
        EXPECT_EQ(HTTP::post(request, "text", job).head.status, status);
        EXPECT_EQ(HTTP::get(request, job).head.status, status);
    }
    EXPECT_EQ(thief.connections(), 0);
}

TEST(HTTPSecurity, only_a_trusted_certificate_with_the_right_name_is_accepted)
{
    const TestCertificate right(u"localhost"_s);
    const TestCertificate wrong(u"other.test"_s);
    const ScriptedServer server(always(ScriptedServer::reply(200, "hello")), {}, right.server);
    const ScriptedServer impostor(always(ScriptedServer::reply(200, "hello")), {}, wrong.server);
    const QUrl url = server.url(u"/"_s, u"localhost"_s);
    EXPECT_THAT(refusal(url).toStdString(), ::testing::HasSubstr("self-signed"));
    EXPECT_TRUE(server.requests().isEmpty());
    {
        const Trust trust(right.certificate);
        Job job;
        EXPECT_EQ(HTTP::get({.url = url}, job).body, "hello");
        EXPECT_EQ(download(url).body, "hello");
    }
    const Trust trust(wrong.certificate);
    EXPECT_THAT(refusal(impostor.url(u"/"_s, u"localhost"_s)).toStdString(), ::testing::HasSubstr("host name"));
    EXPECT_TRUE(impostor.requests().isEmpty());
}

TEST(HTTPSecurity, a_download_follows_five_redirects_on_this_machine_and_not_a_sixth)
{
    for (const int count : {5, 6}) {
        int left = count;
        const ScriptedServer server([&](const ScriptedServer::Request &) {
            return left-- > 0 ? redirect("/next") : ScriptedServer::reply(200, "model");
        });
        const Downloaded result = download(server.url(u"/"_s));
        EXPECT_EQ(result.status, count == 5 ? 200 : 307);
        EXPECT_EQ(result.body, count == 5 ? "model" : "moved");
        EXPECT_EQ(server.requests().size(), 6);
        EXPECT_EQ(server.requests().last().headers["range"], "bytes=5-");
    }
}

TEST(HTTPSecurity, a_download_leaves_neither_encryption_nor_this_machine_behind)
{
    const TestCertificate certificate(u"localhost"_s);
    const Trust trust(certificate.certificate);
    const ScriptedServer plain(always(ScriptedServer::reply(200, "model")));
    for (const QByteArray &to : {QByteArray("http://192.0.2.1/"), QByteArray("ftp://127.0.0.1/"),
                                 QByteArray("file:///etc/passwd"), QByteArray("data:text/plain,x")}) {
        const ScriptedServer server(always(redirect(to)));
        EXPECT_EQ(download(server.url(u"/"_s)).status, 307) << to.constData();
    }
    const ScriptedServer encrypted(always(ScriptedServer::reply(200, "model")), {}, certificate.server);
    const ScriptedServer upwards(always(redirect(encrypted.url(u"/"_s, u"localhost"_s).toEncoded())));
    EXPECT_EQ(download(upwards.url(u"/"_s)).body, "model");
}

TEST(HTTPSecurity, the_proxy_is_asked_for_other_hosts_but_not_for_this_machine)
{
    const ScriptedServer proxy(always(ScriptedServer::reply(200, "by proxy")));
    const ScriptedServer server(always(ScriptedServer::reply(200, "directly")));
    qputenv("http_proxy", proxy.url({}).toEncoded());
    const auto restore = qScopeGuard([] { qunsetenv("http_proxy"); });
    Job job;
    EXPECT_EQ(HTTP::get({.url = QUrl(u"http://service.test/v1"_s)}, job).body, "by proxy");
    EXPECT_EQ(proxy.requests().value(0).target, "http://service.test/v1");
    for (const QString &host : {u"127.0.0.1"_s, u"localhost"_s})
        EXPECT_EQ(HTTP::get({.url = server.url(u"/"_s, host)}, job).body, "directly");
    EXPECT_EQ(proxy.requests().size(), 1);
}
