#include "tests/support/Events.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace Events {

bool waitFor(const std::function<bool()> &condition)
{
    constexpr int limit = 30'000; // milliseconds
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

void handle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

} // namespace Events
