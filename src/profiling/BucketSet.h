#pragma once

#include "repository/OffsetIndexPages.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tavix::profiling {

/// The set of value buckets that occur in a range of rows, as a bitmap that fits the first-level cache.
class BucketSet {
  public:
    void add(std::uint64_t hash) {
        const std::uint32_t bucket = repository::offsetIndexBucket(hash);
        std::uint64_t& word = m_words[bucket / kBits];
        const std::uint64_t bit = std::uint64_t{1} << bucket % kBits;
        if ((word & bit) != 0)
            return;
        word |= bit;
        m_used[bucket / kBits / kBits] |= std::uint64_t{1} << bucket / kBits % kBits;
        ++m_size;
    }
    [[nodiscard]] std::size_t size() const { return m_size; }

    /// Calls use(bucket) for each in ascending order and empties the set.
    template <typename Use>
    void takeAll(Use use) {
        for (std::size_t u = 0; u < m_used.size(); ++u)
            for (std::uint64_t used = m_used[u]; used != 0; used &= used - 1) {
                const std::size_t w = u * kBits + static_cast<std::size_t>(std::countr_zero(used));
                for (std::uint64_t word = m_words[w]; word != 0; word &= word - 1)
                    use(static_cast<std::uint16_t>(w * kBits + static_cast<std::size_t>(std::countr_zero(word))));
                m_words[w] = 0;
            }
        m_used = {};
        m_size = 0;
    }

  private:
    static constexpr std::size_t kBits = 64;
    std::array<std::uint64_t, repository::kOffsetIndexBuckets / kBits> m_words{};
    std::array<std::uint64_t, repository::kOffsetIndexBuckets / kBits / kBits> m_used{}; ///< a bit for each word
    std::size_t m_size = 0;
};

} // namespace tavix::profiling
