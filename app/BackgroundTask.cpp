#include "app/BackgroundTask.h"

#include "core/Cancelled.h"

#include <utility>

BackgroundTask::BackgroundTask(Order order)
{
    // An operation that was cancelled may need a moment to notice; the one in its place does not wait for it.
    constexpr int threads = 4;
    m_pool.setMaxThreadCount(order == Order::newestAtOnce ? threads : 1);
}

BackgroundTask::~BackgroundTask()
{
    if (m_run)
        m_run->cancel();
    m_pool.waitForDone();
}

void BackgroundTask::start(const QString &what, Work work, Refused refused)
{
    if (m_run)
        m_run->cancel();
    m_run = std::make_shared<LocalAIJob>();
    const auto progress = [this, run = m_run](const QString &now) {
        QMetaObject::invokeMethod(
            this,
            [this, run, now] {
                if (run == m_run)
                    setActivity(now);
            },
            Qt::QueuedConnection);
    };
    m_pool.start([this, run = m_run, progress, work = std::move(work), refused = std::move(refused)] {
        Delivery delivery;
        try {
            delivery = work(*run, progress);
        } catch (const Cancelled &) {
            delivery = [] {};
        } catch (const std::exception &error) {
            delivery = [refused, sentence = QString::fromUtf8(error.what())] { refused(sentence); };
        }
        QMetaObject::invokeMethod(
            this, [this, run, delivery = std::move(delivery)] { deliver(run, delivery); }, Qt::QueuedConnection);
    });
    setActivity(what);
}

void BackgroundTask::deliver(const Run &run, const Delivery &delivery)
{
    if (run != m_run)
        return;
    m_run.reset();
    setActivity(std::nullopt);
    delivery();
}

void BackgroundTask::cancel()
{
    if (!m_run)
        return;
    m_run->cancel();
    m_run.reset();
    setActivity(std::nullopt);
}

void BackgroundTask::finish()
{
    cancel();
    m_pool.waitForDone();
}

void BackgroundTask::setActivity(std::optional<QString> what)
{
    if (m_activity == what)
        return;
    m_activity = std::move(what);
    Q_EMIT activityChanged();
}

void BackgroundTask::wait()
{
    m_pool.waitForDone();
}
