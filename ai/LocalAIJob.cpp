#include "ai/LocalAIJob.h"

#include "ai/HelperProcess.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QFile>
#include <QScopeGuard>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestLog = 1024 * 1024; ///< Bytes of standard error that are kept; only the last line is of use.

[[noreturn]] void refuseOutput()
{
    throw ConversionError(u"处理结果过大，请将素材分段后再试。"_s);
}

/// The file that takes one stream of a helper while it runs.
class Sink
{
public:
    Sink(const QString &directory, const QString &extension)
        : m_file(directory + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces) + extension)
    {}
    ~Sink() { m_file.remove(); }
    Sink(const Sink &) = delete;
    Sink &operator=(const Sink &) = delete;

    QString path() const { return m_file.fileName(); }
    qint64 size() const { return m_file.size(); }

    /// Empties it when it has grown over `limit` bytes; the helper goes on appending.
    void bound(qint64 limit)
    {
        if (size() > limit)
            m_file.resize(0);
    }

    /// What was written since the last call.
    QByteArray readOn()
    {
        if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            throw PlatformError(m_file.errorString());
        return m_file.readAll();
    }

    /// All of it. @throws PlatformError
    QByteArray readAll()
    {
        m_file.close();
        return readOn();
    }

private:
    QFile m_file;
};

QString lastLine(const QByteArray &log)
{
    return QString::fromUtf8(log.trimmed().split('\n').last()).trimmed();
}

} // namespace

void LocalAIJob::setRequest(std::function<void()> abort)
{
    replaceRequest(std::make_unique<OnCancel>(*this, std::move(abort)));
}

void LocalAIJob::clearRequest()
{
    replaceRequest(nullptr);
}

void LocalAIJob::replaceRequest(std::unique_ptr<OnCancel> request)
{
    const std::lock_guard lock(m_mutex);
    // The parameter outlives the lock: the one before is let go after it, for that may wait for its abort to return.
    std::swap(m_request, request);
}

void LocalAIJob::launch(HelperProcess &process)
{
    check();
    m_processEnd.reset();
    process.start();
    m_process = &process;
    // Whoever cancelled meanwhile has it ended now.
    m_processEnd = std::make_unique<OnCancel>(*this, [&process] { process.terminate(); });
}

void LocalAIJob::stop()
{
    m_processEnd.reset();
    if (HelperProcess *const process = std::exchange(m_process, nullptr))
        process->stop();
}

QByteArray LocalAIJob::run(const QString &executable, const QStringList &arguments, const QString &directory,
                           const Output &output, const Check &meanwhile)
{
    constexpr std::chrono::milliseconds poll(50);
    Sink out(directory, u".out"_s);
    Sink log(directory, u".log"_s);
    HelperProcess process({.program = executable, .arguments = arguments, .output = out.path(), .errors = log.path()});
    const auto stopping = qScopeGuard([this] { stop(); });
    launch(process);
    const auto listen = [&] {
        if (const QByteArray news = output ? out.readOn() : QByteArray(); !news.isEmpty())
            output(news);
        if (meanwhile)
            meanwhile();
    };
    while (!process.waitForEnd(poll)) {
        check();
        // What is too much already need not fill the disk as well.
        if (out.size() > largestOutput)
            refuseOutput();
        log.bound(largestLog);
        listen();
    }
    check();
    m_lastWords = lastLine(log.readAll());
    if (!process.hasSucceeded())
        throw ConversionError(u"本地处理未完成。请确认文件可正常播放、模型完整，并重试。"_s, m_lastWords);
    if (out.size() > largestOutput)
        refuseOutput();
    listen();
    return out.readAll();
}
