#include "repository/OffsetIndexPages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace tavix::repository {
namespace {

using List = std::vector<std::uint32_t>;

struct Packed {
    std::size_t ranges = 0;
    std::map<std::uint32_t, List> lists;
    std::vector<OffsetIndexPage> pages;

    [[nodiscard]] const OffsetIndexPage& pageOf(std::uint32_t bucket) const {
        const auto behind =
            std::upper_bound(pages.begin(), pages.end(), bucket,
                             [](std::uint32_t b, const OffsetIndexPage& page) { return b < page.firstBucket; });
        return *std::prev(behind);
    }
    [[nodiscard]] std::optional<List> listOf(std::uint32_t bucket) const {
        const OffsetIndexPage& page = pageOf(bucket);
        return rangesOfBucket(page.bytes, page.firstBucket, bucket, ranges);
    }
};

/// A random share of all buckets, each in up to `most` ranges.
Packed packed(unsigned seed, std::size_t ranges, double share, std::size_t most) {
    std::mt19937 random(seed);
    Packed result;
    result.ranges = ranges;
    OffsetIndexPacker packer(ranges);
    for (std::uint32_t bucket = 0; bucket < kOffsetIndexBuckets; ++bucket) {
        if (static_cast<double>(random() % 1000) >= share * 1000)
            continue;
        List list;
        for (std::size_t n = 1 + random() % most; n > 0; --n)
            list.push_back(static_cast<std::uint32_t>(random() % ranges));
        std::sort(list.begin(), list.end());
        list.erase(std::unique(list.begin(), list.end()), list.end());
        packer.add(bucket, list);
        result.lists[bucket] = std::move(list);
    }
    result.pages = packer.finish();
    return result;
}

TEST(OffsetIndexPages, GiveBackTheRangesOfEveryBucket) {
    const Packed few = packed(1, 1000, 0.01, 3);
    const Packed many = packed(2, 100'000, 1, 40);
    EXPECT_EQ(few.pages.size(), 1U);
    EXPECT_GT(many.pages.size(), 20U);
    for (const Packed* one : {&few, &many})
        for (std::uint32_t bucket = 0; bucket < kOffsetIndexBuckets; ++bucket) {
            const auto known = one->lists.find(bucket);
            ASSERT_EQ(one->listOf(bucket), known == one->lists.end() ? List() : known->second) << bucket;
        }
}

TEST(OffsetIndexPages, WhatIsNotListedIsEverywhere) {
    OffsetIndexPacker packer(8);
    packer.add(0, List{1, 7});
    packer.add(1, List{0, 1, 2});
    packer.addUnlisted(2);
    packer.add(65535, List{0});
    const Packed result{8, {}, packer.finish()};
    EXPECT_EQ(result.listOf(0), (List{1, 7}));
    EXPECT_EQ(result.listOf(1), std::nullopt) << "more than a quarter";
    EXPECT_EQ(result.listOf(2), std::nullopt);
    EXPECT_EQ(result.listOf(3), List());
    EXPECT_EQ(result.listOf(65535), List{0});
    EXPECT_EQ(OffsetIndexPacker(8).finish().size(), 1U) << "without any value a page says so";
}

// A damaged page must not make a reader miss rows: it returns nothing.
TEST(OffsetIndexPages, DamageIsNoticed) {
    const Packed whole = packed(3, 5000, 0.005, 4);
    const std::vector<std::byte>& page = whole.pages.front().bytes;
    const std::uint32_t bucket = whole.lists.begin()->first;
    for (std::size_t at = 0; at < page.size(); at += 3) {
        std::vector<std::byte> damaged = page;
        damaged[at] ^= std::byte{0x41};
        EXPECT_EQ(rangesOfBucket(damaged, 0, bucket, 5000), std::nullopt) << at;
        EXPECT_EQ(rangesOfBucket(std::span(page).first(at), 0, bucket, 5000), std::nullopt) << at;
        EXPECT_EQ(unpackOffsets(damaged), std::nullopt);
    }
    const List& list = whole.lists.begin()->second;
    EXPECT_EQ(rangesOfBucket(page, 0, bucket, list.back()), std::nullopt) << "a range that there is not";
}

TEST(OffsetIndexPages, OffsetsComeBack) {
    const std::vector<std::int64_t> offsets{0, 3, 3, 100'000, 1LL << 40, (1LL << 40) + 127};
    EXPECT_EQ(unpackOffsets(packOffsets(offsets)), offsets);
    EXPECT_EQ(unpackOffsets(packOffsets({})), std::vector<std::int64_t>());
}

} // namespace
} // namespace tavix::repository
