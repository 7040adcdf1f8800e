#include "store/SaveOutcome.h"

#include <utility>

SaveOutcome::SaveOutcome(QObject *context, std::function<void(const QString &)> failed, std::function<void()> recovered)
    : m_context(context)
    , m_failed(std::move(failed))
    , m_recovered(std::move(recovered))
{}

void SaveOutcome::noteSuccess()
{
    note(nullptr, {});
}

void SaveOutcome::noteFailure()
{
    try {
        throw;
    } catch (const std::exception &error) {
        note(std::current_exception(), QString::fromUtf8(error.what()));
    }
}

void SaveOutcome::throwFailure()
{
    const std::lock_guard lock(m_mutex);
    if (m_failure)
        std::rethrow_exception(m_failure);
}

void SaveOutcome::note(std::exception_ptr failure, const QString &description)
{
    {
        const std::lock_guard lock(m_mutex);
        m_failure = std::move(failure);
    }
    if (std::exchange(m_reported, description) == description)
        return;
    const auto tell = [failed = m_failed, recovered = m_recovered, description] {
        if (description.isEmpty())
            recovered();
        else
            failed(description);
    };
    QMetaObject::invokeMethod(m_context, tell, Qt::QueuedConnection);
}
