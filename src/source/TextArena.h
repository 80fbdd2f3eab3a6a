#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace tavix::source {

/// Bytes that keep their address until the arena is cleared or destroyed, also when the arena is moved.
class TextArena {
  public:
    /// Uninitialised memory for `size` bytes.
    [[nodiscard]] char* allocate(std::size_t size) {
        if (size > m_left)
            grow(size);
        char* at = m_next;
        m_next += size;
        m_left -= size;
        return at;
    }
    /// Returns the end of the latest allocation.
    void giveBack(std::size_t size) {
        m_next -= size;
        m_left += size;
    }
    [[nodiscard]] const char* keep(std::string_view text) {
        char* at = allocate(text.size());
        if (!text.empty())
            std::memcpy(at, text.data(), text.size());
        return at;
    }
    /// Bytes allocated, used or not.
    [[nodiscard]] std::size_t memory() const { return m_memory; }
    void clear() {
        m_chunks.clear();
        m_memory = 0;
        m_next = nullptr;
        m_left = 0;
        m_chunkSize = kFirstChunk;
    }

  private:
    static constexpr std::size_t kFirstChunk = std::size_t{1} << 12;
    static constexpr std::size_t kLargestChunk = std::size_t{1} << 20;

    void grow(std::size_t size) {
        const std::size_t chunk = std::max(size, m_chunkSize);
        m_chunkSize = std::min(m_chunkSize * 2, kLargestChunk);
        m_chunks.push_back(std::make_unique_for_overwrite<char[]>(chunk));
        m_next = m_chunks.back().get();
        m_left = chunk;
        m_memory += chunk;
    }

    std::vector<std::unique_ptr<char[]>> m_chunks;
    char* m_next = nullptr;
    std::size_t m_left = 0;
    std::size_t m_memory = 0;
    std::size_t m_chunkSize = kFirstChunk;
};

} // namespace tavix::source
