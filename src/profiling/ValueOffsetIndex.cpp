#include "profiling/ValueOffsetIndex.h"

#include <algorithm>
#include <utility>

namespace tavix::profiling {

namespace {

/// Buckets that are transposed at once, so that their lists stay in the cache.
constexpr std::uint32_t kSlice = 4096;

/// Transposes the lists of buckets by range into lists of ranges by bucket.
class Turning {
  public:
    explicit Turning(std::span<const ValueOffsetIndex> parts)
        : m_parts(parts), m_ranges(parts.front().ranges()), m_taken(m_ranges * parts.size()) {}

    std::vector<repository::OffsetIndexPage> pages() {
        repository::OffsetIndexPacker packer(m_ranges);
        for (std::uint32_t first = 0; first < repository::kOffsetIndexBuckets; first += kSlice) {
            turn(first);
            for (std::uint32_t bucket = 0; bucket < kSlice; ++bucket)
                if (isGivenUp(first + bucket))
                    packer.addUnlisted(first + bucket);
                else
                    packer.add(first + bucket, listOf(bucket));
        }
        return packer.finish();
    }

  private:
    [[nodiscard]] bool isGivenUp(std::uint32_t bucket) const {
        return std::any_of(m_parts.begin(), m_parts.end(),
                           [bucket](const ValueOffsetIndex& part) { return part.isGivenUp(bucket); });
    }

    /// Calls use(bucket in the slice, range) for the whole slice, with ascending ranges.
    template <typename Use>
    void walk(std::uint32_t first, std::vector<std::size_t>& taken, Use use) const {
        for (std::size_t range = 0; range < m_ranges; ++range)
            for (std::size_t part = 0; part < m_parts.size(); ++part) {
                const auto buckets = m_parts[part].bucketsOf(range);
                std::size_t& at = taken[range * m_parts.size() + part];
                for (; at < buckets.size() && buckets[at] < first + kSlice; ++at)
                    use(buckets[at] - first, static_cast<std::uint32_t>(range));
            }
    }

    void turn(std::uint32_t first) {
        m_ends.assign(kSlice + 1, 0);
        std::vector<std::size_t> before = m_taken;
        walk(first, before, [&](std::uint32_t bucket, std::uint32_t) { ++m_ends[bucket + 1]; });
        for (std::size_t i = 1; i < m_ends.size(); ++i)
            m_ends[i] += m_ends[i - 1];
        m_lists.resize(m_ends.back());
        // Afterwards m_ends[b] is the end of list b, where the next list begins.
        walk(first, m_taken, [&](std::uint32_t bucket, std::uint32_t range) { m_lists[m_ends[bucket]++] = range; });
    }

    /// A bucket that several parts have in a range is listed once.
    std::span<const std::uint32_t> listOf(std::uint32_t bucket) {
        const std::size_t begin = bucket == 0 ? 0 : m_ends[bucket - 1];
        const auto list = std::span(m_lists).subspan(begin, m_ends[bucket] - begin);
        const auto end = m_parts.size() == 1 ? list.end() : std::unique(list.begin(), list.end());
        return list.first(static_cast<std::size_t>(end - list.begin()));
    }

    std::span<const ValueOffsetIndex> m_parts;
    std::size_t m_ranges;
    std::vector<std::size_t> m_taken; ///< for each range and part
    std::vector<std::size_t> m_ends;
    std::vector<std::uint32_t> m_lists;
};

} // namespace

void ValueOffsetIndex::endRange(BucketSet& marked) {
    std::size_t at = m_buckets.size();
    m_buckets.resize(at + marked.size());
    marked.takeAll([&](std::uint16_t bucket) { m_buckets[at++] = bucket; });
    m_ends.push_back(m_buckets.size());
}

std::vector<repository::OffsetIndexPage> packOffsetIndex(std::span<const ValueOffsetIndex> parts) {
    return Turning(parts).pages();
}

} // namespace tavix::profiling
