#pragma once

#include "profiling/StopSignal.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace tavix::profiling {

/// How a run divides its memory. The rest is for the blocks that are read.
class MemoryPlan {
  public:
    /// `bytes` may be any number; below about 64 MB the fixed costs of a run exceed it.
    explicit MemoryPlan(std::size_t bytes) : m_bytes(bytes) {}

    /// For counted values while a table is read.
    [[nodiscard]] std::size_t counting() const { return m_bytes / 3; }
    /// When counting() is exceeded, columns are spilled until this much is left.
    [[nodiscard]] std::size_t afterSpilling() const { return m_bytes / 8; }
    /// For profiling the columns, besides the values, over all threads.
    [[nodiscard]] std::size_t profiling() const { return m_bytes / 3; }
    /// For packed distributions that wait to be stored.
    [[nodiscard]] std::size_t packed() const { return m_bytes / 8; }
    /// For the offset indexes of the columns.
    [[nodiscard]] std::size_t offsetIndex() const { return m_bytes / 16; }
    /// For metrics that wait to be stored.
    [[nodiscard]] std::size_t facts() const { return m_bytes / 16; }
    /// For changed pages that the store may hold back. It writes the rest at the end, when nothing else runs.
    [[nodiscard]] std::size_t storing() const { return std::clamp(m_bytes / 16, kLeastForStore, kMostForStore); }

  private:
    static constexpr std::size_t kLeastForStore = std::size_t{8} << 20;
    static constexpr std::size_t kMostForStore = std::size_t{64} << 20;

    std::size_t m_bytes;
};

/// Lets threads take memory only while there is enough for all. A single thread gets whatever it asks for.
class MemoryGate {
  public:
    explicit MemoryGate(std::size_t bytes) : m_bytes(bytes) {}

    class Pass {
      public:
        Pass(MemoryGate& gate, std::size_t bytes) : m_gate(gate), m_size(bytes) {}
        ~Pass() { m_gate.giveBack(m_size); }
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

      private:
        MemoryGate& m_gate;
        std::size_t m_size;
    };

    /// Waits for the memory, or until the work is stopped.
    [[nodiscard]] Pass take(std::size_t bytes, StopSignal& stop) {
        std::unique_lock lock(m_mutex);
        const auto fits = [&] { return m_taken == 0 || m_taken + bytes <= m_bytes; };
        while (!m_givenBack.wait_for(lock, kBetweenPolls, fits) && !stop.isStopped()) {
        }
        m_taken += bytes;
        return {*this, bytes};
    }

  private:
    void giveBack(std::size_t bytes) {
        {
            const std::lock_guard lock(m_mutex);
            m_taken -= bytes;
        }
        m_givenBack.notify_all();
    }

    std::size_t m_bytes;
    std::size_t m_taken = 0;
    std::mutex m_mutex;
    std::condition_variable m_givenBack;
};

} // namespace tavix::profiling
