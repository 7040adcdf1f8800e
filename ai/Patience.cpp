#include "ai/Patience.h"

#include "core/Job.h"

#include <QDateTime>

#include <condition_variable>
#include <mutex>

using namespace Qt::StringLiterals;

namespace Patience {

namespace {

using std::chrono::seconds;

constexpr int tooManyRequests = 429;
constexpr int unavailable = 503;

/// How long the service wants to be left alone; absent when it does not say or it is too long to wait for.
std::optional<seconds> pauseAsked(const HTTP::Head &head)
{
    constexpr seconds longest(60);
    if (head.status != tooManyRequests && head.status != unavailable)
        return std::nullopt;
    QString value = QString::fromLatin1(head.value("retry-after")).trimmed();
    bool isNumber = false;
    seconds asked(value.toLongLong(&isNumber));
    if (!isNumber) {
        // HTTP names the zone, which that format does not know.
        const QDateTime until = QDateTime::fromString(value.replace(u" GMT"_s, u" +0000"_s), Qt::RFC2822Date);
        if (!until.isValid())
            return std::nullopt;
        asked = std::max(seconds(QDateTime::currentDateTimeUtc().secsTo(until)), seconds(0));
    }
    return asked >= seconds(0) && asked <= longest ? std::optional(asked) : std::nullopt;
}

void wait(seconds pause, Job &job, const ProgressReport &progress)
{
    std::mutex mutex;
    std::condition_variable cancelled;
    const Job::OnCancel end(job, [&] {
        const std::lock_guard lock(mutex);
        cancelled.notify_all();
    });
    for (seconds left = pause; left > seconds(0); --left) {
        if (progress)
            progress({.what = u"服务繁忙，%1 秒后重试"_s.arg(left.count())});
        std::unique_lock lock(mutex);
        cancelled.wait_for(lock, seconds(1), [&] { return job.isCancelled(); });
        lock.unlock();
        job.check();
    }
}

} // namespace

QString elapsedText(std::chrono::milliseconds elapsed)
{
    const auto total = std::chrono::duration_cast<seconds>(elapsed).count();
    constexpr int sixty = 60;
    const QString minutesAndSeconds = u":%1"_s.arg(total % sixty, 2, 10, QChar(u'0'));
    const auto minutes = total / sixty;
    if (minutes < sixty)
        return QString::number(minutes) + minutesAndSeconds;
    return u"%1:%2"_s.arg(minutes / sixty).arg(minutes % sixty, 2, 10, QChar(u'0')) + minutesAndSeconds;
}

HTTP::Answer send(const std::function<HTTP::Answer()> &attempt, Job &job, const ProgressReport &progress)
{
    constexpr int mostPauses = 3;
    for (int pauses = 0;; ++pauses) {
        HTTP::Answer answer = attempt();
        const auto pause = pauseAsked(answer.head);
        if (!pause || pauses == mostPauses)
            return answer;
        wait(*pause, job, progress);
    }
}

} // namespace Patience
