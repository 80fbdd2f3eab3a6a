#include "repository/PackedDistribution.h"
#include "repository/tests/Resealed.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <utility>

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

/// The blocks contain the rows, one block after the other.
void expectRows(const std::vector<Bytes>& blocks, const std::vector<ValueCount>& rows) {
    std::size_t row = 0;
    for (const Bytes& bytes : blocks) {
        auto parsed = UnpackedBlock::parse(bytes);
        ASSERT_TRUE(parsed) << parsed.error().text;
        const ValueCount first = parsed->at(0);
        const UnpackedBlock block = std::move(*parsed);
        ASSERT_EQ(first.value, rows[row].value) << "a text did not stay where it was when the block was moved";
        // As columns, from the second row on.
        std::vector<std::uint64_t> counts(block.rowCount() - 1);
        block.readCounts(1, counts);
        for (std::size_t later = 0; later < counts.size(); ++later) {
            const ValueCount& expected = rows[row + later + 1];
            ASSERT_EQ(counts[later], expected.count);
            ASSERT_EQ(block.valueAt(later + 1), expected.value);
            ASSERT_EQ(block.nullRow() == later + 1, expected.isNull);
        }
        ASSERT_EQ(block.ends().back(), block.text().size());
        for (std::size_t inBlock = 0; inBlock < block.rowCount(); ++inBlock, ++row) {
            ValueCount read = block.at(inBlock);
            ASSERT_EQ(read.value, rows[row].value);
            ASSERT_EQ(read.count, rows[row].count);
            ASSERT_EQ(read.isNull, rows[row].isNull);
        }
    }
    EXPECT_EQ(row, rows.size());
}

void expectRoundTrip(const std::vector<ValueCount>& rows, std::size_t blockCount) {
    const auto blocks = pack(rows);
    EXPECT_EQ(blocks.size(), blockCount);
    expectRows(blocks, rows);
}

template <typename Number>
void append(Bytes& bytes, std::uint64_t number) {
    const auto narrow = static_cast<Number>(number);
    const auto stored = std::as_bytes(std::span(&narrow, 1));
    bytes.insert(bytes.end(), stored.begin(), stored.end());
}

void append(Bytes& bytes, std::string_view text) {
    const auto stored = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), stored.begin(), stored.end());
}

/// A header without its checksum; no row is null.
Bytes header(unsigned version, unsigned countWidth, unsigned lengthWidth, unsigned hasShared, std::size_t rows,
             std::size_t textBytes) {
    Bytes bytes;
    for (const unsigned byte : {version, countWidth, lengthWidth, hasShared})
        append<std::uint8_t>(bytes, byte);
    append<std::uint32_t>(bytes, rows);
    append<std::uint32_t>(bytes, 0xFFFFFFFF);
    append<std::uint32_t>(bytes, textBytes);
    append<std::uint64_t>(bytes, 0);
    return bytes;
}

/// Rows as the first version stored them, in the widest columns.
Bytes firstVersion(const std::vector<ValueCount>& rows) {
    std::size_t textBytes = 0;
    for (const ValueCount& row : rows)
        textBytes += row.value.size();
    Bytes bytes = header(1, 8, 4, 0, rows.size(), textBytes);
    for (const ValueCount& row : rows)
        append<std::uint64_t>(bytes, row.count);
    for (const ValueCount& row : rows)
        append<std::uint32_t>(bytes, row.value.size());
    for (const ValueCount& row : rows)
        append(bytes, row.value);
    for (std::size_t row = 0; row < rows.size(); ++row)
        if (rows[row].isNull)
            std::memcpy(bytes.data() + 8, &row, 4);
    return resealed(bytes);
}

Bytes smallBlock() {
    const std::vector<ValueCount> rows{{"Zürich", 300, false}, {"", 70, true}, {"", 69, false}, {"x\0y", 1, false}};
    return pack(rows).front();
}

Bytes sharingBlock() {
    const std::vector<ValueCount> rows{
        {"item 1", 9, false}, {"", 5, true},  {"item 12", 5, false},  {"item 123", 5, false},
        {"item 2", 5, false}, {"", 1, false}, {"item 200", 1, false}, {"item 2000 and the long rest", 1, false}};
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

TEST(PackedDistribution, ReadsBackTextsThatShareBeginnings) {
    // Around steps of eight and sixteen bytes, and around the longest shared prefix; each text once longer, once
    // shorter.
    // shorter.
    std::deque<std::string> texts;
    std::vector<ValueCount> rows;
    for (const std::size_t shared : {0, 1, 7, 8, 9, 15, 16, 17, 31, 32, 33, 127, 128, 129, 254, 255, 256, 300})
        for (const std::size_t rest : {1, 0, 2, 15, 16, 17, 31, 32, 33, 128, 129, 200})
            rows.push_back({texts.emplace_back(std::string(shared, 's') + std::string(rest, 'r')), 3, false});
    expectRoundTrip(rows, 1);
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(rows.begin(), rows.end(), random);
        rows[random() % rows.size()] = {{}, 3, round % 2 == 0};
        if (round % 2 == 0)
            expectRoundTrip(rows, 1);
        std::erase_if(rows, [](const ValueCount& row) { return row.isNull; });
    }
}

TEST(PackedDistribution, StoresWhatNeighboursShareOnce) {
    std::deque<std::string> texts;
    std::vector<ValueCount> rows;
    for (int number = 1; number <= 9; ++number)
        rows.push_back({texts.emplace_back(fmt::format("item {}", number)), 5, false});
    Bytes expected = header(2, 0, 0, 1, rows.size(), 14);
    append<std::uint64_t>(expected, 5);
    append<std::uint32_t>(expected, 6);
    append(expected, std::string_view("\0\5\5\5\5\5\5\5\5", 9));
    append(expected, "item 123456789");
    EXPECT_EQ(pack(rows).front(), resealed(expected));
    expectRoundTrip(rows, 1);

    // A byte a row must not cost more than it saves, nor one count in 8 bytes more than the counts.
    const std::vector<ValueCount> apart{{"ab", 2, false}, {"ac", 2, false}, {"bd", 2, false}};
    expected = header(2, 1, 1, 0, apart.size(), 6);
    append(expected, "\2\2\2\2\2\2abacbd");
    EXPECT_EQ(pack(apart).front(), resealed(expected));
    expectRoundTrip(apart, 1);
}

TEST(PackedDistribution, ReadsTheFirstVersion) {
    const std::vector<ValueCount> rows{{"Zürich", 300, false}, {"", 70, true}, {"", 69, false}, {"x", 1, false}};
    expectRows({firstVersion(rows)}, rows);
    Bytes block = firstVersion(rows);
    block[3] = std::byte{1}; // It had no meaning in that version.
    expectRows({resealed(block)}, rows);
    for (const std::size_t width : {1, 2}) {
        block = firstVersion(rows);
        block[width] = std::byte{0};
        EXPECT_FALSE(UnpackedBlock::parse(resealed(block)));
    }
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
    Bytes block = sharingBlock();
    ASSERT_TRUE(UnpackedBlock::parse(block));
    for (std::size_t bit = 0; bit < block.size() * 8; ++bit) {
        block[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(UnpackedBlock::parse(block)) << "bit " << bit;
        block[bit / 8] ^= std::byte{1} << (bit % 8);
    }
}

TEST(PackedDistribution, EveryCutAndEveryAddedByteIsNoticed) {
    Bytes block = sharingBlock();
    for (std::size_t size = 0; size < block.size(); ++size) {
        // A copy of exactly this size, so that the sanitizer sees a read beyond it.
        Bytes cut(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(UnpackedBlock::parse(cut)) << size;
        EXPECT_FALSE(UnpackedBlock::parse(resealed(cut))) << size;
    }
    block.push_back(std::byte{0});
    EXPECT_FALSE(UnpackedBlock::parse(block));
    EXPECT_FALSE(UnpackedBlock::parse(resealed(block)));
}

TEST(PackedDistribution, ForgedBlocksWithARightChecksumAreReadSafelyOrRefused) {
    std::mt19937 random(20261121);
    for (const Bytes& block : {smallBlock(), sharingBlock(), firstVersion({{"abc", 3, false}, {"abd", 2, false}})}) {
        ASSERT_EQ(resealed(block), block) << "the test's own checksum is another one";
        int refused = 0;
        for (int round = 0; round < 10'000; ++round) {
            Bytes forged = block;
            for (unsigned change = 0; change < 1 + random() % 3; ++change)
                forged[random() % forged.size()] = static_cast<std::byte>(random());
            forged = resealed(forged);
            const auto read = UnpackedBlock::parse(forged);
            if (!read) {
                ++refused;
                continue;
            }
            std::size_t bytes = 0;
            for (std::size_t row = 0; row < read->rowCount(); ++row)
                bytes += read->at(row).value.size();
            EXPECT_LE(bytes, forged.size() + 255 * read->rowCount());
        }
        EXPECT_GT(refused, 1000);
    }
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
