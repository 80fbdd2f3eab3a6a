#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// In which ranges of its file a field has which values, roughly: values are told apart by 16 bits of a hash, so that a
/// range that is named may be without the value, but no range that has it is left out. docs/formats/offset-index.md
/// describes the form.
namespace tavix::repository {

inline constexpr std::uint32_t kPlaceBuckets = 65536;

inline std::uint32_t placeBucket(std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash >> 48);
}

/// The ranges of some consecutive buckets.
struct PlacePage {
    std::uint32_t firstBucket = 0;
    std::vector<std::byte> bytes;
};

class PlacePacker {
  public:
    /// Ranges are counted from 0 to below `ranges`.
    explicit PlacePacker(std::size_t ranges);

    /// Buckets ascend, and so do the ranges of each. Where those are many they are not listed.
    void add(std::uint32_t bucket, std::span<const std::uint32_t> ranges);
    /// In place of add(): in which ranges the bucket stands is not known.
    void addUnlisted(std::uint32_t bucket);
    /// At least one page, whose first bucket is 0.
    [[nodiscard]] std::vector<PlacePage> finish();

  private:
    void begin(std::uint32_t bucket);
    void end();
    std::vector<std::byte>& pageFor(std::uint32_t bucket);

    std::size_t m_ranges;
    std::vector<PlacePage> m_pages;
    std::uint32_t m_nextBucket = 0; ///< of the current page
    std::vector<std::byte> m_list;  ///< room for one
};

/// The ranges of a bucket, ascending. Nothing when all ranges are to be looked at: they are not listed, or the page is
/// damaged. `page` is the one with the greatest first bucket that is not above `bucket`.
[[nodiscard]] std::optional<std::vector<std::uint32_t>>
rangesOfBucket(std::span<const std::byte> page, std::uint32_t firstBucket, std::uint32_t bucket, std::size_t ranges);

/// Where ranges begin and the last one ends, as distances, and back; nothing when the bytes are damaged.
[[nodiscard]] std::vector<std::byte> packOffsets(std::span<const std::int64_t> offsets);
[[nodiscard]] std::optional<std::vector<std::int64_t>> unpackOffsets(std::span<const std::byte> bytes);

} // namespace tavix::repository
