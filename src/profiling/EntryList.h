#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix::profiling {

/// A distinct value and its count. The text is stored elsewhere.
struct Entry {
    const char* data = nullptr;
    std::uint64_t count = 0;
    std::uint32_t size = 0;
    std::uint32_t hash = 0;

    [[nodiscard]] std::string_view text() const { return {data, size}; }
};

/// A list of many entries that grows without copying them and takes over another list without touching most of its
/// entries, since fresh memory costs more than the work on an entry.
class EntryList {
  public:
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] bool empty() const { return m_size == 0; }
    [[nodiscard]] Entry& operator[](std::size_t i) { return m_chunks[i / kChunk][i % kChunk]; }
    [[nodiscard]] const Entry& operator[](std::size_t i) const { return m_chunks[i / kChunk][i % kChunk]; }
    [[nodiscard]] const Entry& front() const { return m_chunks.front().front(); }
    /// All entries in order, in chunks.
    [[nodiscard]] std::span<const std::vector<Entry>> chunks() const { return m_chunks; }

    void add(const Entry& entry) {
        if (m_size % kChunk == 0)
            addChunk();
        m_chunks.back().push_back(entry);
        ++m_size;
    }
    /// Takes over all entries of another list, in any order.
    void join(EntryList&& other) {
        for (; m_size % kChunk != 0 && !other.empty(); --other.m_size) {
            add(other.m_chunks.back().back());
            other.m_chunks.back().pop_back();
            if (other.m_chunks.back().empty())
                other.m_chunks.pop_back();
        }
        std::move(other.m_chunks.begin(), other.m_chunks.end(), std::back_inserter(m_chunks));
        m_size += std::exchange(other.m_size, 0);
        other.m_chunks.clear();
    }
    /// Bytes, including the freed pieces that a short list leaves behind as it grows: when many lists grow alike, none
    /// can reuse another's.
    [[nodiscard]] std::size_t memory() const {
        const std::size_t first = m_chunks.empty() ? 0 : m_chunks.front().capacity();
        std::size_t entries = first < kChunk ? first : 0;
        for (const std::vector<Entry>& chunk : m_chunks)
            entries += chunk.capacity();
        return entries * sizeof(Entry);
    }

  private:
    static constexpr std::size_t kChunk = std::size_t{1} << 16;

    void addChunk() {
        m_chunks.emplace_back();
        // A short list takes no more than it needs.
        if (m_size > 0)
            m_chunks.back().reserve(kChunk);
    }

    std::vector<std::vector<Entry>> m_chunks; ///< all but the last have kChunk entries
    std::size_t m_size = 0;
};

} // namespace tavix::profiling
