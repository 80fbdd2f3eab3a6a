#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// A fast hash for mostly short texts. With unpredictable seeds, nobody can construct texts that collide.
namespace tavix {

struct HashSeeds {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    bool operator==(const HashSeeds&) const = default;
};

namespace hashing {

template <typename Word>
std::uint64_t load(const char* from) {
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

inline std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    __extension__ typedef unsigned __int128 Wide;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Up to 16 bytes as two words; reads nothing outside them.
inline void loadShort(const char* data, std::size_t size, std::uint64_t& a, std::uint64_t& b) {
    if (size >= 8) {
        a = load<std::uint64_t>(data);
        b = load<std::uint64_t>(data + size - 8);
    } else if (size >= 4) {
        a = load<std::uint32_t>(data);
        b = load<std::uint32_t>(data + size - 4);
    } else if (size > 0) {
        a = load<std::uint8_t>(data) << 16 | load<std::uint8_t>(data + size / 2) << 8;
        b = load<std::uint8_t>(data + size - 1);
    } else {
        a = 0;
        b = 0;
    }
}

} // namespace hashing

/// A hash of the bytes, each bit of which depends on all of them. It differs on a machine of another byte order.
inline std::uint64_t hashText(const HashSeeds& seeds, const char* data, std::size_t size) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
    std::uint64_t state = seeds.first ^ (size * kOdd);
    while (size > 16) {
        state = hashing::mix(hashing::load<std::uint64_t>(data) ^ state,
                             hashing::load<std::uint64_t>(data + 8) ^ seeds.second);
        data += 16;
        size -= 16;
    }
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    hashing::loadShort(data, size, a, b);
    return hashing::mix(hashing::mix(a ^ state, b ^ seeds.second) ^ seeds.first, kOdd);
}

inline std::uint64_t hashText(const HashSeeds& seeds, std::string_view text) {
    return hashText(seeds, text.data(), text.size());
}

} // namespace tavix
