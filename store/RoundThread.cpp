#include "store/RoundThread.h"

#include <utility>

RoundThread::RoundThread(std::function<Pause()> round)
    : m_round(std::move(round))
    , m_thread([this] { run(); })
{}

RoundThread::~RoundThread()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void RoundThread::wake()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_called;
    }
    m_changed.notify_all();
}

void RoundThread::finishRound()
{
    std::unique_lock lock(m_mutex);
    const auto call = ++m_called;
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_answered >= call; });
}

void RoundThread::run()
{
    const auto isWanted = [this] { return m_stopping || m_called != m_answered; };
    Pause pause;
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (pause)
            m_changed.wait_for(lock, *pause, isWanted);
        else
            m_changed.wait(lock, isWanted);
        if (m_stopping)
            return;
        const auto calls = m_called;
        lock.unlock();
        pause = m_round();
        lock.lock();
        m_answered = calls;
        m_changed.notify_all();
    }
}
