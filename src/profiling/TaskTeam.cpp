#include "profiling/TaskTeam.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <utility>
#include <vector>

namespace tavix::profiling {

Status doTogether(std::span<const Task> tasks, unsigned threads) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    Status outcome;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < tasks.size(); i = next++) {
                Status status = tasks[i]();
                if (status)
                    continue;
                next = tasks.size();
                const std::lock_guard lock(mutex);
                if (outcome)
                    outcome = std::move(status);
            }
        } catch (...) {
            next = tasks.size();
            throw;
        }
    };
    std::vector<std::future<void>> helpers;
    for (std::size_t i = 1; i < std::min<std::size_t>(threads, tasks.size()); ++i)
        helpers.push_back(std::async(std::launch::async, work));
    work();
    for (std::future<void>& helper : helpers)
        helper.get();
    return outcome;
}

} // namespace tavix::profiling
