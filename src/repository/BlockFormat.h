#pragma once

#include <xxhash.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

/// What the writers and readers of packed lists share; docs/formats/distribution.md describes the forms.
namespace tavix::repository {

static_assert(std::endian::native == std::endian::little, "numbers are stored as they lie in memory");

inline constexpr std::uint32_t kNoNull = 0xFFFFFFFF;
/// A text shares at most so many bytes with the one before it, as a byte can say.
inline constexpr std::size_t kLongestShared = 255;

/// What a block begins with; then the counts, the lengths, what is shared and the text.
struct BlockHeader {
    std::uint8_t version = 2;
    std::uint8_t countWidth = 1;  ///< bytes: 1, 2, 4 or 8; 0 when all counts are the one that is stored
    std::uint8_t lengthWidth = 1; ///< bytes: 1, 2 or 4; 0 when all lengths are the one that is stored
    std::uint8_t hasShared = 0;   ///< 1 when shared beginnings are left out
    std::uint32_t rows = 0;
    std::uint32_t nullRow = kNoNull;
    std::uint32_t textBytes = 0;
    std::uint64_t checksum = 0;
};
static_assert(sizeof(BlockHeader) == 24);

/// Hashes begin with the same number of bytes and have their checksum at the same place.
inline constexpr std::size_t kHeaderSize = sizeof(BlockHeader);
inline constexpr std::size_t kChecked = offsetof(BlockHeader, checksum);

/// Over everything before and after itself; there must be a whole header.
inline std::uint64_t checksumOf(std::span<const std::byte> payload) {
    const std::uint64_t seed = XXH3_64bits(payload.data(), kChecked);
    return XXH3_64bits_withSeed(payload.data() + kHeaderSize, payload.size() - kHeaderSize, seed);
}

/// How many bytes `rows` numbers of this width take, where one that all share is stored in full.
template <typename Full>
std::size_t columnBytes(std::size_t rows, std::size_t width) {
    return width == 0 ? sizeof(Full) : rows * width;
}

/// Calls with a number of the type that has this width, so that each loop is compiled for one of them.
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

/// Copies pieces that are mostly short, by steps of `kStep` bytes: up to as many bytes more than `size` are read and
/// written. The source may end where the target begins.
template <std::size_t kStep = kCopySlack>
void copyWithSlack(char* target, const char* source, std::size_t size) {
    static_assert(kStep <= kCopySlack);
    constexpr std::size_t kWorthACall = 128;
    const auto copyStep = [&](std::size_t from) {
        char step[kStep];
        std::memcpy(step, source + from, kStep);
        std::memcpy(target + from, step, kStep);
    };
    // The first step asks no question, as its answer could not be foreseen.
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
