#pragma once

#include <xxhash.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

/// Common to the writers and readers of packed lists; docs/formats/distribution.md describes the formats.
namespace tavix::repository {

static_assert(std::endian::native == std::endian::little, "numbers are stored as they lie in memory");

inline constexpr std::uint32_t kNoNull = 0xFFFFFFFF;
/// The longest prefix that a text shares with the one before it: the largest number of a byte.
inline constexpr std::size_t kLongestShared = 255;

/// The header of a block; the counts, the lengths, the prefix lengths and the text follow.
struct BlockHeader {
    std::uint8_t version = 2;
    std::uint8_t countWidth = 1;  ///< bytes: 1, 2, 4 or 8; 0 if all counts equal the one stored
    std::uint8_t lengthWidth = 1; ///< bytes: 1, 2 or 4; 0 if all lengths equal the one stored
    std::uint8_t hasShared = 0;   ///< 1 if shared prefixes are left out
    std::uint32_t rows = 0;
    std::uint32_t nullRow = kNoNull;
    std::uint32_t textBytes = 0;
    std::uint64_t checksum = 0;
};
static_assert(sizeof(BlockHeader) == 24);

/// Hashes begin with the same number of bytes and have their checksum at the same offset.
inline constexpr std::size_t kHeaderSize = sizeof(BlockHeader);
inline constexpr std::size_t kChecked = offsetof(BlockHeader, checksum);

/// Of all bytes before and after the checksum itself; there must be a whole header.
inline std::uint64_t checksumOf(std::span<const std::byte> payload) {
    const std::uint64_t seed = XXH3_64bits(payload.data(), kChecked);
    return XXH3_64bits_withSeed(payload.data() + kHeaderSize, payload.size() - kHeaderSize, seed);
}

/// The bytes of `rows` numbers of this width; of width 0, one number is stored in full.
template <typename Full>
std::size_t columnBytes(std::size_t rows, std::size_t width) {
    return width == 0 ? sizeof(Full) : rows * width;
}

/// Calls with a number of the type of this width, so that each loop is compiled for one type.
template <typename Use>
void withWidth(std::size_t width, Use use) {
    switch (width) {
    case 1:
        return use(std::uint8_t{});
    case 2:
        return use(std::uint16_t{});
    case 4:
        return use(std::uint32_t{});
    default:
        return use(std::uint64_t{});
    }
}

template <typename Number>
Number loadAs(const void* source, std::size_t position = 0) {
    Number number{};
    std::memcpy(&number, static_cast<const std::byte*>(source) + position * sizeof number, sizeof number);
    return number;
}

template <typename Number>
void storeAs(void* target, std::size_t position, std::uint64_t number) {
    const auto narrow = static_cast<Number>(number);
    std::memcpy(static_cast<std::byte*>(target) + position * sizeof narrow, &narrow, sizeof narrow);
}

inline constexpr std::size_t kCopySlack = 32;

/// Copies pieces that are mostly short in steps of `kStep` bytes; may read and write up to as many bytes beyond `size`.
/// The source may end where the target begins.
template <std::size_t kStep = kCopySlack>
void copyWithSlack(char* target, const char* source, std::size_t size) {
    static_assert(kStep <= kCopySlack);
    constexpr std::size_t kWorthACall = 128;
    const auto copyStep = [&](std::size_t from) {
        char step[kStep];
        std::memcpy(step, source + from, kStep);
        std::memcpy(target + from, step, kStep);
    };
    // The first step is unconditional, because a branch here would be mispredicted.
    copyStep(0);
    if (size <= kStep)
        return;
    if (size > kWorthACall) {
        std::memcpy(target, source, size);
        return;
    }
    for (std::size_t done = kStep; done < size; done += kStep)
        copyStep(done);
}

} // namespace tavix::repository
