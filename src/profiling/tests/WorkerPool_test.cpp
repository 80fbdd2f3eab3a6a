#include "profiling/TaskBatch.h"
#include "profiling/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tavix::profiling {
namespace {

// A round may end before a helper wakes, which then finds the next round.
TEST(WorkerPool, DoesEveryTaskOnceHoweverShortTheRounds) {
    WorkerPool pool(4);
    for (std::size_t round = 0; round < 20'000; ++round) {
        std::vector<std::atomic<int>> done(round % 7);
        pool.start(done.size(), [&](std::size_t i) {
            ++done[i];
            return Status{};
        });
        EXPECT_TRUE(pool.finish());
        std::this_thread::yield();
        for (const std::atomic<int>& times : done)
            ASSERT_EQ(times, 1) << "in round " << round;
    }
}

TEST(WorkerPool, AnExceptionComesOutAndTheNextRoundIsDone) {
    WorkerPool pool(3);
    for (int round = 0; round < 200; ++round) {
        pool.start(8, [](std::size_t i) -> Status {
            if (i == 5)
                throw std::runtime_error("five");
            return {};
        });
        EXPECT_THROW((void)pool.finish(), std::runtime_error);
        std::atomic<int> done = 0;
        pool.start(8, [&](std::size_t) {
            ++done;
            return Status{};
        });
        EXPECT_TRUE(pool.finish());
        EXPECT_EQ(done, 8);
    }
}

/// Two tasks: the caller's ends when the other one has begun, and that one when the caller has polled.
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

// Only the thread that began a run may ask its user whether to continue, and others may work for long.
TEST(WorkerPool, PollsWhileItWaitsForTheOthers) {
    WaitingForAPoll waiting;
    WorkerPool pool(2);
    pool.start(2, [&](std::size_t) {
        waiting.task();
        return Status{};
    });
    EXPECT_TRUE(pool.finish([&] { waiting.poll(); }));
}

TEST(TaskBatch, ReturnsTheFirstFailureAndBeginsNothingAfterIt) {
    std::vector<std::size_t> begun;
    TaskBatch batch(9, [&](std::size_t i) {
        begun.push_back(i);
        return i == 3 ? Status{Error{"three"}} : Status{};
    });
    batch.work();
    batch.work();
    EXPECT_EQ(begun, (std::vector<std::size_t>{0, 1, 2, 3}));
    ASSERT_FALSE(batch.outcome());
    EXPECT_EQ(batch.outcome().error().text, "three");
}

TEST(TaskBatch, KeepsTheFirstOfTwoFailures) {
    TaskBatch* shared = nullptr;
    TaskBatch batch(2, [&](std::size_t i) {
        if (i == 0)
            shared->work(); // task 1 fails while this one is still at work
        return Status{Error{i == 0 ? "second" : "first"}};
    });
    shared = &batch;
    batch.work();
    ASSERT_FALSE(batch.outcome());
    EXPECT_EQ(batch.outcome().error().text, "first");
}

TEST(TaskBatch, PollsWhileItWaitsForTheOthers) {
    WaitingForAPoll waiting;
    StopSignal stop([&] {
        waiting.poll();
        return true;
    });
    const std::vector<std::function<Status()>> tasks(2, [&] {
        waiting.task();
        return Status{};
    });
    EXPECT_TRUE(runTogether(tasks, 2, stop));
}

} // namespace
} // namespace tavix::profiling
