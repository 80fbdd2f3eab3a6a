#include "repository/tests/FuzzBlock.h"

#include "repository/PackedDistribution.h"
#include "repository/tests/HoldsOrAborts.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace tavix::repository {

namespace {

// As docs/formats/distribution.md has it.
constexpr std::size_t kHeader = 24;
constexpr std::size_t kChecksumAt = 16;

void checkRows(const UnpackedBlock& block) {
    const std::size_t rows = block.rowCount();
    std::vector<std::uint64_t> counts(rows);
    block.readCounts(0, counts);
    std::vector<ValueCount> values;
    std::size_t text = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const ValueCount value = block.at(row);
        holdsOrAborts(value.count == counts[row] && value.count == block.countAt(row), "counts differ");
        holdsOrAborts(value.isNull == (block.nullRow() == row), "null stands elsewhere");
        text += block.valueAt(row).size();
        values.push_back(value);
    }
    holdsOrAborts(text == block.text().size(), "texts are left over");
    DistributionPacker packer(values);
    std::size_t next = 0;
    for (;;) {
        const auto more = packer.next();
        holdsOrAborts(more.ok(), "what was unpacked cannot be packed");
        if (!*more)
            break;
        const auto again = UnpackedBlock::parse(packer.block().payload);
        holdsOrAborts(again.ok(), "what was packed cannot be unpacked");
        for (std::size_t row = 0; row < again->rowCount(); ++row, ++next) {
            const ValueCount value = again->at(row);
            holdsOrAborts(next < rows && value.value == values[next].value && value.count == values[next].count &&
                              value.isNull == values[next].isNull,
                          "a row changed by packing");
        }
    }
    holdsOrAborts(next == rows, "rows are missing");
}

void parseAndCheck(std::span<const std::byte> bytes) {
    if (const auto block = UnpackedBlock::parse(bytes); block)
        checkRows(*block);
}

} // namespace

void fuzzBlock(std::span<const std::byte> bytes) {
    parseAndCheck(bytes);
    if (bytes.size() < kHeader)
        return;
    std::vector<std::byte> repaired(bytes.begin(), bytes.end());
    const std::uint64_t seed = XXH3_64bits(repaired.data(), kChecksumAt);
    const std::uint64_t sum = XXH3_64bits_withSeed(repaired.data() + kHeader, repaired.size() - kHeader, seed);
    std::memcpy(repaired.data() + kChecksumAt, &sum, sizeof sum);
    parseAndCheck(repaired);
}

} // namespace tavix::repository
