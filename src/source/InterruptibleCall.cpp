#include "source/InterruptibleCall.h"

#include <chrono>
#include <future>

namespace tavix::source {

bool runInterruptibly(const std::function<void()>& work, const KeepGoing& keepGoing,
                      const std::function<void()>& interrupt) {
    constexpr auto kPatience = std::chrono::milliseconds(50);
    if (!keepGoing) {
        work();
        return false;
    }
    bool isInterrupted = false;
    auto done = std::async(std::launch::async, work);
    while (done.wait_for(kPatience) != std::future_status::ready) {
        isInterrupted = isInterrupted || !keepGoing();
        // A single call may come too early, before the work has begun.
        if (isInterrupted)
            interrupt();
    }
    done.get();
    return isInterrupted;
}

} // namespace tavix::source
