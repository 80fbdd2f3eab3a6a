#include "profiling/TaskTeam.h"

#include "profiling/FirstFailure.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <vector>

namespace tavix::profiling {

Status doTogether(std::span<const Task> tasks, unsigned threads, StopSignal& stop) {
    std::atomic<std::size_t> next = 0;
    FirstFailure failure;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < tasks.size(); i = next++) {
                failure.keep(tasks[i]());
                if (failure.hasFailed())
                    next = tasks.size();
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
    for (std::future<void>& helper : helpers) {
        while (helper.wait_for(kBetweenPolls) != std::future_status::ready)
            (void)stop.isStopped();
        helper.get();
    }
    return failure.outcome();
}

} // namespace tavix::profiling
