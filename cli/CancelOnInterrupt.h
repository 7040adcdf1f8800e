#pragma once

#include "core/Job.h"

#include <thread>

/// While it lives, Ctrl-C and SIGTERM cancel a job, whatever its operation waits for.
class CancelOnInterrupt
{
public:
    explicit CancelOnInterrupt(Job &job);
    ~CancelOnInterrupt();
    CancelOnInterrupt(const CancelOnInterrupt &) = delete;
    CancelOnInterrupt &operator=(const CancelOnInterrupt &) = delete;

private:
    int m_end[2] = {-1, -1}; ///< A pipe that says that the watch is over.
    std::thread m_watch;
};
