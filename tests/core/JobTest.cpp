#include "core/Job.h"

#include "core/Cancelled.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <semaphore>
#include <thread>

TEST(Job, cancelling_ends_every_wait_once_and_a_late_one_at_once)
{
    Job job;
    EXPECT_NO_THROW(job.check());
    int first = 0;
    int second = 0;
    int gone = 0;
    const Job::OnCancel a(job, [&] { ++first; });
    {
        const Job::OnCancel b(job, [&] { ++gone; });
    }
    const Job::OnCancel c(job, [&] { ++second; });
    job.cancel();
    job.cancel();
    EXPECT_THROW(job.check(), Cancelled);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(gone, 0);
    int late = 0;
    const Job::OnCancel d(job, [&] { ++late; });
    EXPECT_EQ(late, 1);
}

TEST(Job, a_wait_may_take_its_own_registration_and_others_away_while_it_is_ended)
{
    Job job;
    int called = 0;
    std::unique_ptr<Job::OnCancel> first;
    std::unique_ptr<Job::OnCancel> second;
    first = std::make_unique<Job::OnCancel>(job, [&] {
        ++called;
        EXPECT_TRUE(job.isCancelled());
        second.reset();
        first.reset();
    });
    second = std::make_unique<Job::OnCancel>(job, [&] { ++called; });
    job.cancel();
    EXPECT_EQ(called, 1);
}

TEST(Job, what_ends_a_wait_is_never_called_after_its_registration_is_gone)
{
    for (int round = 0; round < 200; ++round) {
        Job job;
        std::binary_semaphore begun(0);
        std::atomic<bool> isAlive = true;
        std::atomic<int> strays = 0;
        std::thread canceller([&] {
            begun.acquire();
            job.cancel();
        });
        {
            const Job::OnCancel end(job, [&] {
                if (!isAlive)
                    ++strays;
                std::this_thread::yield();
                if (!isAlive)
                    ++strays;
            });
            begun.release();
            if (round % 2 == 0)
                std::this_thread::yield();
        }
        isAlive = false;
        canceller.join();
        EXPECT_EQ(strays, 0);
    }
}
