#include "ai/text/TranslationServer.h"

#include "ai/HTTP.h"
#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QScopeGuard>
#include <QUuid>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refusePort()
{
    throw ConversionError(u"无法分配本地翻译端口。"_s, qt_error_string(errno));
}

/// A port of this machine that nobody listens on now.
quint16 freePort()
{
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    if (descriptor < 0)
        refusePort();
    const auto closing = qScopeGuard([=] { close(descriptor); });
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const place = reinterpret_cast<sockaddr *>(&address);
    if (bind(descriptor, place, size) != 0 || getsockname(descriptor, place, &size) != 0)
        refusePort();
    return ntohs(address.sin_port);
}

QStringList serverArguments(const QString &model, quint16 port, const QString &key)
{
    return {u"-m"_s,        model,  u"--host"_s,     u"127.0.0.1"_s, u"--port"_s,     QString::number(port),
            u"--api-key"_s, key,    u"-c"_s,         u"8192"_s,      u"-ngl"_s,       u"99"_s,
            u"-t"_s,        u"4"_s, u"--parallel"_s, u"1"_s,         u"--no-webui"_s, u"--log-disable"_s};
}

HTTP::Request request(quint16 port, const QString &path, const QString &key, std::chrono::milliseconds longest)
{
    return {.url = QUrl(u"http://127.0.0.1:%1/%2"_s.arg(port).arg(path)),
            .headers = {{.name = "Authorization", .value = "Bearer " + key.toUtf8()},
                        {.name = "Content-Type", .value = "application/json"}},
            .silence = longest,
            .whole = longest};
}

} // namespace

TranslationServer::TranslationServer(const QString &model, LocalAIJob &job, const Workspace &workspace,
                                     const ProgressReport &progress)
    : m_job(job)
    , m_port(freePort())
    , m_key(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_process({.program = LocalModels::helper(u"llama-server"_s),
                 .arguments = serverArguments(model, m_port, m_key),
                 .output = workspace.file(u"server.log"_s),
                 .errors = workspace.file(u"server.log"_s)})
{
    try {
        m_job.launch(m_process);
    } catch (const PlatformError &error) {
        throw ConversionError(u"无法启动本地翻译引擎。"_s, error.description());
    }
    // The destructor does not run when the constructor throws.
    auto stopping = qScopeGuard([this] { m_job.stop(); });
    progress({.what = u"正在载入本地翻译模型…"_s});
    waitUntilReady();
    stopping.dismiss();
}

TranslationServer::~TranslationServer()
{
    m_job.stop();
}

void TranslationServer::waitUntilReady()
{
    constexpr auto longest = 120s;
    constexpr auto pause = 250ms;
    constexpr auto step = 50ms; // after which a cancelled wait is noticed
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (std::chrono::steady_clock::now() < deadline) {
        m_job.check();
        if (isReady())
            return;
        for (auto waited = 0ms; waited < pause; waited += step) {
            m_job.check();
            if (m_process.waitForEnd(step)) {
                m_job.check();
                throw ConversionError(u"本地翻译引擎启动失败，请检查模型后重试。"_s);
            }
        }
    }
    throw ConversionError(u"翻译模型载入超时，请关闭占用较大的应用后重试。"_s);
}

bool TranslationServer::isReady()
{
    try {
        return HTTP::get(request(m_port, u"health"_s, m_key, 1s), m_job).head.status == 200;
    } catch (const PlatformError &) {
        // Nobody listens yet.
        return false;
    }
}

QByteArray TranslationServer::complete(const QByteArray &body)
{
    const QString refusal = u"本地翻译引擎尚未就绪。"_s;
    HTTP::Answer answer;
    try {
        answer = HTTP::post(request(m_port, u"completion"_s, m_key, 180s), body, m_job);
    } catch (const PlatformError &error) {
        throw ConversionError(refusal, error.description());
    }
    if (answer.head.status != 200 || answer.body.value_or(QByteArray()).isEmpty())
        throw ConversionError(refusal, u"HTTP %1"_s.arg(answer.head.status));
    return *answer.body;
}
