#include "repository/PackedDistribution.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <xxhash.h>

#include <cstring>
#include <deque>
#include <random>
#include <string>

namespace tavix::repository {
namespace {

using Bytes = std::vector<std::byte>;

std::vector<Bytes> pack(std::span<const ValueCount> rows) {
    std::vector<Bytes> blocks;
    DistributionPacker packer(rows);
    for (;;) {
        auto more = packer.next();
        if (!more) {
            ADD_FAILURE() << more.error().text;
            return blocks;
        }
        if (!*more)
            return blocks;
        blocks.emplace_back(packer.block().payload.begin(), packer.block().payload.end());
    }
}

void expectRoundTrip(const std::vector<ValueCount>& rows, std::size_t blockCount) {
    auto blocks = pack(rows);
    EXPECT_EQ(blocks.size(), blockCount);
    std::size_t row = 0;
    for (const Bytes& bytes : blocks) {
        auto block = UnpackedBlock::parse(bytes);
        ASSERT_TRUE(block) << block.error().text;
        // As columns, from the second row on.
        std::vector<std::uint64_t> counts(block->rowCount() - 1);
        block->readCounts(1, counts);
        for (std::size_t later = 0; later < counts.size(); ++later) {
            const ValueCount& expected = rows[row + later + 1];
            ASSERT_EQ(counts[later], expected.count);
            ASSERT_EQ(block->valueAt(later + 1), expected.value);
            ASSERT_EQ(block->nullRow() == later + 1, expected.isNull);
        }
        ASSERT_EQ(block->ends().back(), block->text().size());
        for (std::size_t inBlock = 0; inBlock < block->rowCount(); ++inBlock, ++row) {
            ValueCount read = block->at(inBlock);
            ASSERT_EQ(read.value, rows[row].value);
            ASSERT_EQ(read.count, rows[row].count);
            ASSERT_EQ(read.isNull, rows[row].isNull);
        }
    }
    EXPECT_EQ(row, rows.size());
}

Bytes smallBlock() {
    const std::vector<ValueCount> rows{{"Zürich", 300, false}, {"", 70, true}, {"", 69, false}, {"x\0y", 1, false}};
    return pack(rows).front();
}

TEST(PackedDistribution, ReadsBackWhatWasPacked) {
    expectRoundTrip({}, 0);
    expectRoundTrip({{"", 5, true}}, 1);
    expectRoundTrip({{"", 5, false}}, 1);
    expectRoundTrip({{"a", ~std::uint64_t{0}, false}, {"b", 1, false}}, 1);
    std::deque<std::string> texts;
    std::vector<ValueCount> rows;
    for (std::size_t number = 0; number < 2 * kRowsPerBlock + 1; ++number)
        rows.push_back({texts.emplace_back(fmt::format("value {}", number)), 100'000 - number, false});
    rows[kRowsPerBlock + 3].value = {};
    rows[kRowsPerBlock + 3].isNull = true;
    expectRoundTrip(rows, 3);
}

TEST(PackedDistribution, LongTextsEndABlockEarly) {
    const std::string half(kTextPerBlock / 2, 'h');
    const std::string huge(3 * kTextPerBlock, 'x');
    expectRoundTrip({{half, 9, false}, {half, 8, false}, {"z", 7, false}, {huge, 6, false}, {"end", 5, false}}, 4);
}

TEST(PackedDistribution, RefusesASecondNull) {
    const std::vector<ValueCount> rows{{"", 5, true}, {"", 4, true}};
    DistributionPacker packer(rows);
    EXPECT_FALSE(packer.next().ok());
}

TEST(PackedDistribution, PresenceHoldsExactlyTheBytesOfTheTexts) {
    const std::vector<ValueCount> rows{{"b\xFF", 1, false}, {"", 1, true}, {std::string_view("\0", 1), 1, false}};
    DistributionPacker packer(rows);
    ASSERT_TRUE(*packer.next());
    BytePresence expected{};
    expected[0] = std::byte{1};
    expected['b' / 8] = std::byte{1} << ('b' % 8);
    expected[31] = std::byte{0x80};
    EXPECT_EQ(packer.block().presence, expected);
    EXPECT_EQ(packer.block().sum, 3U);
}

TEST(PackedDistribution, EveryFlippedBitIsNoticed) {
    Bytes block = smallBlock();
    ASSERT_TRUE(UnpackedBlock::parse(block));
    for (std::size_t bit = 0; bit < block.size() * 8; ++bit) {
        block[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(UnpackedBlock::parse(block)) << "bit " << bit;
        block[bit / 8] ^= std::byte{1} << (bit % 8);
    }
}

TEST(PackedDistribution, EveryCutAndEveryAddedByteIsNoticed) {
    Bytes block = smallBlock();
    for (std::size_t size = 0; size < block.size(); ++size) {
        // A copy of just this size, so that a read beyond it is seen by the sanitizer.
        Bytes cut(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(UnpackedBlock::parse(cut)) << size;
    }
    block.push_back(std::byte{0});
    EXPECT_FALSE(UnpackedBlock::parse(block));
}

void seal(Bytes& block) {
    std::uint64_t seed = XXH3_64bits(block.data(), 16);
    std::uint64_t checksum = XXH3_64bits_withSeed(block.data() + 24, block.size() - 24, seed);
    std::memcpy(block.data() + 16, &checksum, sizeof checksum);
}

TEST(PackedDistribution, ForgedBlocksWithARightChecksumAreReadSafelyOrRefused) {
    const Bytes block = smallBlock();
    Bytes sealed = block;
    seal(sealed);
    ASSERT_EQ(sealed, block) << "the test's own checksum is another one";
    std::mt19937 random(20261121);
    int refused = 0;
    for (int round = 0; round < 20'000; ++round) {
        Bytes forged = block;
        for (unsigned change = 0; change < 1 + random() % 3; ++change)
            forged[random() % forged.size()] = static_cast<std::byte>(random());
        seal(forged);
        auto read = UnpackedBlock::parse(forged);
        if (!read) {
            ++refused;
            continue;
        }
        std::size_t bytes = 0;
        for (std::size_t row = 0; row < read->rowCount(); ++row)
            bytes += read->at(row).value.size();
        EXPECT_LE(bytes, forged.size());
    }
    EXPECT_GT(refused, 1000);
}

TEST(PackedDistribution, HashesAreAscendingAndWithoutNull) {
    const std::vector<ValueCount> rows{{"b", 3, false}, {"", 2, true}, {"a", 2, false}, {"", 1, false}};
    auto hashes = sortedHashes(rows);
    std::vector<std::uint64_t> expected{hashValue("a"), hashValue("b"), hashValue("")};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(hashes, expected);
    EXPECT_EQ(hashValue("a"), 0xE6C632B61E964E1FU) << "stored hashes must mean the same for ever";
}

} // namespace
} // namespace tavix::repository
