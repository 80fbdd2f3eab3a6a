#include "repository/PackedField.h"
#include "repository/PackedHashes.h"
#include "repository/tests/Resealed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace tavix::repository {
namespace {

using Hashes = std::vector<std::uint64_t>;
constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

Hashes randomHashes(std::size_t count, unsigned bits) {
    std::mt19937_64 random(count + bits);
    Hashes hashes(count);
    for (std::uint64_t& hash : hashes)
        hash = random() >> (64 - bits);
    std::sort(hashes.begin(), hashes.end());
    return hashes;
}

TEST(PackedHashes, ReadsBackWhatWasPacked) {
    std::vector<Hashes> cases{{},
                              {0},
                              {kLargest},
                              {0, kLargest},
                              {0, 0, kLargest, kLargest},
                              Hashes(300, 5),
                              {1, kLargest / 2, kLargest / 2 + 1, kLargest},
                              randomHashes(kHashesPerChunk, 64)};
    for (const std::size_t count : {2U, 127U, 128U, 129U, 130U, 257U, 1000U})
        for (const unsigned bits : {1U, 8U, 13U, 40U, 63U, 64U})
            cases.push_back(randomHashes(count, bits));
    for (const Hashes& hashes : cases) {
        const auto packed = packSortedHashes(hashes);
        EXPECT_NE(packed.size() % 8, 0U);
        const auto read = unpackHashes(packed);
        ASSERT_TRUE(read) << read.error().text;
        ASSERT_EQ(*read, hashes);
        // In the format of the first version.
        const auto plain = unpackHashes(std::as_bytes(std::span(hashes)));
        ASSERT_TRUE(plain);
        ASSERT_EQ(*plain, hashes);
    }
    EXPECT_LT(packSortedHashes(cases[7]).size(), kHashesPerChunk * 51 / 8) << "17 bits of difference are left out";
}

TEST(PackedHashes, WhatIsDamagedIsRefused) {
    auto packed = packSortedHashes(randomHashes(200, 64));
    for (std::size_t bit = 0; bit < packed.size() * 8; ++bit) {
        packed[bit / 8] ^= std::byte{1} << (bit % 8);
        ASSERT_FALSE(unpackHashes(packed)) << bit;
        packed[bit / 8] ^= std::byte{1} << (bit % 8);
    }
    for (std::size_t size = 1; size < packed.size(); ++size) {
        if (size % 8 == 0)
            continue; // Plain hashes have no checksum.
        const std::vector<std::byte> cut(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(unpackHashes(cut)) << size;
        EXPECT_FALSE(unpackHashes(resealed(cut))) << size;
    }
    packed.push_back(std::byte{0});
    EXPECT_FALSE(unpackHashes(resealed(packed)));
    const Hashes falling{2, 1};
    EXPECT_FALSE(unpackHashes(std::as_bytes(std::span(falling))));
    const Hashes tooMany(kHashesPerChunk + 1, 7);
    EXPECT_FALSE(unpackHashes(std::as_bytes(std::span(tooMany))));
}

} // namespace
} // namespace tavix::repository
