#include "profiling/TaskTeam.h"
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

/// Two tasks: the caller's ends when the other one has begun, and that one when the caller has been asked.
class WaitingForAPoll {
  public:
    void task() {
        if (std::this_thread::get_id() == m_caller) {
            while (!m_hasBegun)
                std::this_thread::yield();
            return;
        }
        m_hasBegun = true;
        while (!m_isPolled)
            std::this_thread::yield();
    }
    void poll() {
        EXPECT_EQ(std::this_thread::get_id(), m_caller);
        m_isPolled = true;
    }

  private:
    std::thread::id m_caller = std::this_thread::get_id();
    std::atomic<bool> m_hasBegun = false;
    std::atomic<bool> m_isPolled = false;
};

// Only the thread that began a run may ask its user whether to go on, and others may work for long.
TEST(WorkerPool, PollsWhileItWaitsForTheOthers) {
    WaitingForAPoll waiting;
    WorkerPool pool(2);
    pool.start(2, [&](std::size_t) { waiting.task(); });
    pool.finish([&] { waiting.poll(); });
}

TEST(TaskTeam, PollsWhileItWaitsForTheOthers) {
    WaitingForAPoll waiting;
    StopSignal stop([&] {
        waiting.poll();
        return true;
    });
    const std::vector<Task> tasks(2, [&] {
        waiting.task();
        return Status{};
    });
    EXPECT_TRUE(doTogether(tasks, 2, stop));
}

} // namespace
} // namespace tavix::profiling
