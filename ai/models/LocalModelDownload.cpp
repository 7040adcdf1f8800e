#include "ai/models/LocalModelDownload.h"

#include "ai/HTTP.h"
#include "ai/LocalAIJob.h"
#include "ai/models/LocalModels.h"
#include "ai/models/PartialDownload.h"
#include "core/ByteCount.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int whole = 200;
constexpr int part = 206;
constexpr int unsatisfiable = 416;

/// A failure of our own disk, told apart from those of the network.
struct DiskFailure
{
    PlatformError error;
};

/// Thrown when the server does not go on from where we are.
struct Misplaced
{};

ConversionError failed()
{
    return ConversionError(u"模型下载失败，请检查网络后重试。"_s);
}

ConversionError incomplete()
{
    return ConversionError(u"模型下载不完整，请重新下载。"_s);
}

template <class Step>
void onDisk(Step &&step)
{
    try {
        step();
    } catch (const PlatformError &error) {
        throw DiskFailure{error};
    }
}

/// Whether `head` brings the bytes from `from` to the end of a file of `bytes`, and no others.
bool continues(const HTTP::Head &head, qint64 from, qint64 bytes)
{
    static const QRegularExpression form(u"^bytes (\\d+)-(\\d+)/(\\d+|\\*)$"_s);
    const auto match = form.match(QString::fromLatin1(head.value("content-range")).trimmed());
    return match.hasMatch() && match.captured(1).toLongLong() == from && match.captured(2).toLongLong() == bytes - 1 &&
           (match.captured(3) == u"*" || match.captured(3).toLongLong() == bytes);
}

/// What names this version of the file exactly, for asking for the rest of it alone.
QByteArray validator(const HTTP::Head &head)
{
    const QByteArray tag = head.value("etag");
    return tag.isEmpty() || tag.startsWith("W/") ? head.value("last-modified") : tag;
}

} // namespace

LocalModelDownload::LocalModelDownload(LocalModel model, QList<QUrl> hosts, LocalAIJob &job, ProgressReport progress)
    : m_model(std::move(model))
    , m_hosts(hosts.isEmpty() ? LocalModels::defaultHosts() : std::move(hosts))
    , m_job(job)
    , m_progress(std::move(progress))
{}

void LocalModelDownload::download()
{
    m_job.check();
    checkSpace();
    const QString folder = LocalModels::directory();
    if (!QDir().mkpath(folder))
        throw PlatformError(u"无法创建文件夹：%1"_s.arg(folder));
    PartialDownload partial(m_model);
    m_writtenBefore = partial.size();
    m_clock.start();
    ConversionError failure = failed();
    for (const QUrl &host : std::as_const(m_hosts)) {
        try {
            obtain(host, partial);
        } catch (const ConversionError &error) {
            failure = error;
            continue;
        } catch (const DiskFailure &disk) {
            throw PlatformError(disk.error);
        }
        partial.sync();
        m_job.check();
        LocalModels::moveIntoPlace(partial.path(), m_model);
        partial.removeRecord();
        return;
    }
    throw ConversionError(failure);
}

void LocalModelDownload::checkSpace() const
{
    qint64 there = 0;
    for (const PartialDownload::Kept &kept : PartialDownload::all())
        there += kept.sha256 == m_model.sha256 ? kept.bytes : 0;
    for (const QString &folder : {LocalModels::directory(), QDir::tempPath()}) {
        const auto available = LocalModels::availableSpace(folder);
        LocalModels::checkDownloadSpace(m_model, available ? std::optional(*available + there) : std::nullopt);
    }
}

/// Gets all of the model from `host`, as far as it is missing, and checks it.
void LocalModelDownload::obtain(const QUrl &host, PartialDownload &partial)
{
    if (partial.size() > m_model.bytes)
        onDisk([&] { partial.clear(); });
    // The bytes that were there before may be the wrong ones: then this host is asked for everything.
    for (bool isLast = partial.size() == 0;; isLast = true) {
        complete(host, partial);
        if (m_progress)
            m_progress({.what = u"正在校验模型…"_s});
        try {
            return LocalModels::verify(partial.path(), m_model, &m_job);
        } catch (const ConversionError &) {
            onDisk([&] { partial.clear(); });
            if (isLast)
                throw;
        }
    }
}

/// Asks `host` until as many bytes are there as the model has, or it brings no more.
void LocalModelDownload::complete(const QUrl &host, PartialDownload &partial)
{
    constexpr qint64 worthAnother = 1024 * 1024; // bytes that a broken connection must have brought
    const QUrl url = m_model.url(host);
    bool fromStart = false;
    while (partial.size() < m_model.bytes) {
        const qint64 before = fromStart ? 0 : partial.size();
        const Outcome outcome = request(url, partial, fromStart);
        if (outcome == Outcome::misplaced && !std::exchange(fromStart, true))
            continue;
        if (outcome == Outcome::misplaced || (outcome == Outcome::broken && partial.size() < before + worthAnother))
            throw failed();
        if (outcome == Outcome::whole && partial.size() < m_model.bytes)
            throw incomplete();
        fromStart = false;
    }
}

LocalModelDownload::Outcome LocalModelDownload::request(const QUrl &url, PartialDownload &partial, bool fromStart)
{
    using namespace std::chrono_literals;
    HTTP::Request request{.url = url, .silence = 60s, .whole = 14'400s};
    const qint64 from = fromStart ? 0 : partial.size();
    if (from > 0) {
        request.headers.append({"Range", "bytes=" + QByteArray::number(from) + '-'});
        if (const QByteArray version = partial.validator(url); !version.isEmpty())
            request.headers.append({"If-Range", version});
    }
    const auto begin = [&](const HTTP::Head &head) {
        if (from > 0 && head.status == part && continues(head, from, m_model.bytes))
            return;
        if (from > 0 && (head.status == part || head.status == unsatisfiable))
            throw Misplaced();
        if (head.status != whole)
            throw failed();
        const QByteArray length = head.value("content-length");
        if (!length.isEmpty() && length.toLongLong() != m_model.bytes)
            throw incomplete();
        onDisk([&] { partial.startOver(url, validator(head)); });
    };
    const auto take = [&](QByteArrayView block) {
        onDisk([&] { partial.append(block); });
        if (partial.size() > m_model.bytes) {
            onDisk([&] { partial.clear(); });
            throw incomplete();
        }
        tell(partial.size());
    };
    try {
        HTTP::download(request, m_job, {.begin = begin, .take = take});
        return Outcome::whole;
    } catch (const Misplaced &) {
        return Outcome::misplaced;
    } catch (const PlatformError &) {
        return Outcome::broken;
    }
}

void LocalModelDownload::tell(qint64 written)
{
    constexpr qint64 mostPercent = 99; // until it has been checked
    const qint64 percent = std::min(written * 100 / m_model.bytes, mostPercent);
    if (percent == m_lastPercent || !m_progress)
        return;
    m_lastPercent = percent;
    // What arrived in the first moments says little about the rest.
    constexpr qint64 firstMoments = 3'000; // milliseconds
    const qint64 elapsed = m_clock.elapsed();
    const qint64 arrived = written - m_writtenBefore;
    std::optional<qint64> left;
    if (elapsed > firstMoments && arrived > 0)
        left = qint64(double(m_model.bytes - written) * double(elapsed) / double(arrived));
    m_progress({.what = u"下载 %1 · %2% · %3 / %4"_s.arg(m_model.title)
                            .arg(percent)
                            .arg(ByteCount::text(written), ByteCount::text(m_model.bytes)),
                .share = double(written) / double(m_model.bytes),
                .leftMS = left});
}
