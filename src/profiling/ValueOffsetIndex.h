#pragma once

#include "profiling/BucketSet.h"
#include "repository/OffsetIndexPages.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavix::profiling {

/// The offset index of a column: the buckets of its values, range of rows by range of rows.
class ValueOffsetIndex {
  public:
    /// Adds a range with these buckets, and empties the set.
    void endRange(BucketSet& marked);
    [[nodiscard]] std::size_t ranges() const { return m_ends.size(); }
    /// Marks the bucket as incomplete: some of its ranges are missing.
    void giveUp(std::uint32_t bucket) {
        m_givenUp.resize(repository::kOffsetIndexBuckets);
        m_givenUp[bucket] = true;
    }
    [[nodiscard]] bool isGivenUp(std::uint32_t bucket) const { return !m_givenUp.empty() && m_givenUp[bucket]; }
    [[nodiscard]] std::size_t memory() const {
        return m_buckets.capacity() * sizeof(std::uint16_t) + m_ends.capacity() * sizeof(std::size_t);
    }

    [[nodiscard]] std::span<const std::uint16_t> bucketsOf(std::size_t range) const {
        const std::size_t begin = range == 0 ? 0 : m_ends[range - 1];
        return std::span(m_buckets).subspan(begin, m_ends[range] - begin);
    }

  private:
    std::vector<std::uint16_t> m_buckets; ///< ascending in each range
    std::vector<std::size_t> m_ends;
    std::vector<bool> m_givenUp; ///< by bucket
};

/// Packs the index by bucket. `parts` belong to one column and have the same ranges.
[[nodiscard]] std::vector<repository::OffsetIndexPage> packOffsetIndex(std::span<const ValueOffsetIndex> parts);

} // namespace tavix::profiling
