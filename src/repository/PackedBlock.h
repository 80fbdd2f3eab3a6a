#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavix::repository {

inline constexpr std::size_t kRowsPerBlock = 4096;
/// A block holds no more text than this; only a single longer value may exceed it.
inline constexpr std::size_t kTextPerBlock = std::size_t{1} << 20;
inline constexpr std::size_t kLongestValue = std::size_t{256} << 20;

/// One bit for each byte value that occurs in a text of the block: byte b is bit b % 8 of entry b / 8.
using BytePresence = std::array<std::byte, 32>;

/// A block with its other columns in the repository.
struct PackedBlock {
    std::int64_t firstRow = 0; ///< its first row's number in the distribution, from 0
    std::int64_t rows = 0;
    std::uint64_t sum = 0; ///< sum of the counts
    BytePresence presence{};
    std::span<const std::byte> payload; ///< borrowed
};

} // namespace tavix::repository
