#pragma once

#include "profiling/PlaceMarks.h"
#include "repository/OffsetIndexPages.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavix::profiling {

/// The buckets of the values of a column, range of rows by range of rows.
class ValuePlaces {
  public:
    /// The marks of a range are complete; they are taken.
    void endRange(PlaceMarks& marks);
    [[nodiscard]] std::size_t ranges() const { return m_ends.size(); }
    /// The ranges of this bucket are not all marked.
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

/// By bucket what `parts` say by range; they are of one column and know the same ranges.
[[nodiscard]] std::vector<repository::OffsetIndexPage> packPlaces(std::span<const ValuePlaces> parts);

} // namespace tavix::profiling
