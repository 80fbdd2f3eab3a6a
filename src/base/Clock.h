#pragma once

#include <chrono>

namespace tavix {

using UtcTime = std::chrono::sys_time<std::chrono::milliseconds>;

/// The time, injected so that tests know which times are stored or written.
class Clock {
  public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual UtcTime now() const = 0;
};

class SystemClock final : public Clock {
  public:
    [[nodiscard]] UtcTime now() const override {
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    }
};

} // namespace tavix
