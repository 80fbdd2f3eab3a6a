#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// Which ranges of its file hold which values of a field. Values are only distinguished by 16 bits of a hash, the
/// bucket, so that a listed range may lack the value, but no range that holds it is missing.
/// docs/formats/offset-index.md describes the format.
namespace tavix::repository {

inline constexpr std::uint32_t kOffsetIndexBuckets = 65536;

inline std::uint32_t offsetIndexBucket(std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash >> 48);
}

/// The ranges of some consecutive buckets.
struct OffsetIndexPage {
    std::uint32_t firstBucket = 0;
    std::vector<std::byte> bytes;
};

class OffsetIndexPacker {
  public:
    /// Ranges are numbered from 0 to below `ranges`.
    explicit OffsetIndexPacker(std::size_t ranges);

    /// Buckets ascend, and so do the ranges of each. Many ranges are not listed.
    void add(std::uint32_t bucket, std::span<const std::uint32_t> ranges);
    /// Instead of add(): the ranges of the bucket are unknown.
    void addUnlisted(std::uint32_t bucket);
    /// At least one page, whose first bucket is 0.
    [[nodiscard]] std::vector<OffsetIndexPage> finish();

  private:
    void begin(std::uint32_t bucket);
    void end();
    std::vector<std::byte>& pageFor(std::uint32_t bucket);

    std::size_t m_ranges;
    std::vector<OffsetIndexPage> m_pages;
    std::uint32_t m_nextBucket = 0; ///< of the current page
    std::vector<std::byte> m_list;  ///< buffer for one list
};

/// The ranges of a bucket, ascending. Nothing if all ranges must be searched: they are not listed, or the page is
/// damaged. `page` is the one with the greatest first bucket that is not above `bucket`.
[[nodiscard]] std::optional<std::vector<std::uint32_t>>
rangesOfBucket(std::span<const std::byte> page, std::uint32_t firstBucket, std::uint32_t bucket, std::size_t ranges);

/// Encodes the starts of ranges and the end of the last one as differences, and decodes them; nothing if the bytes are
/// damaged.
[[nodiscard]] std::vector<std::byte> packOffsets(std::span<const std::int64_t> offsets);
[[nodiscard]] std::optional<std::vector<std::int64_t>> unpackOffsets(std::span<const std::byte> bytes);

} // namespace tavix::repository
