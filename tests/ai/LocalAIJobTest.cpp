#include "ai/LocalAIJob.h"

#include "core/Cancelled.h"

#include <gtest/gtest.h>

TEST(LocalAIJob, cancelling_aborts_the_request_that_runs_and_no_earlier_one)
{
    LocalAIJob job;
    int first = 0;
    int second = 0;
    job.setRequest([&] { ++first; });
    job.setRequest([&] { ++second; });
    job.cancel();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_THROW(job.check(), Cancelled);
    int late = 0;
    job.setRequest([&] { ++late; });
    EXPECT_EQ(late, 1);
}

TEST(LocalAIJob, a_request_that_is_over_is_not_aborted)
{
    LocalAIJob job;
    int aborted = 0;
    job.setRequest([&] { ++aborted; });
    job.clearRequest();
    job.cancel();
    EXPECT_EQ(aborted, 0);
}
