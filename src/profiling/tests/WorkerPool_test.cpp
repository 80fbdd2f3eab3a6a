#include "profiling/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tavix::profiling {
namespace {

// A round may be over before a helper has woken, and that one comes when the next begins.
TEST(WorkerPool, DoesEveryTaskOnceHoweverShortTheRounds) {
    WorkerPool pool(4);
    for (std::size_t round = 0; round < 20'000; ++round) {
        std::vector<std::atomic<int>> done(round % 7);
        pool.start(done.size(), [&](std::size_t i) { ++done[i]; });
        pool.finish();
        std::this_thread::yield();
        for (const std::atomic<int>& times : done)
            ASSERT_EQ(times, 1) << "in round " << round;
    }
}

TEST(WorkerPool, AnExceptionComesOutAndTheNextRoundIsDone) {
    WorkerPool pool(3);
    for (int round = 0; round < 200; ++round) {
        pool.start(8, [](std::size_t i) {
            if (i == 5)
                throw std::runtime_error("five");
        });
        EXPECT_THROW(pool.finish(), std::runtime_error);
        std::atomic<int> done = 0;
        pool.start(8, [&](std::size_t) { ++done; });
        pool.finish();
        EXPECT_EQ(done, 8);
    }
}

} // namespace
} // namespace tavix::profiling
