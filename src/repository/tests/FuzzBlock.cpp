#include "repository/tests/FuzzBlock.h"

#include "repository/PackedDistribution.h"
#include "repository/tests/HoldsOrAborts.h"
#include "repository/tests/Resealed.h"

#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

/// See docs/formats/distribution.md.
constexpr std::size_t kLongestShared = 255;

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
    auto parsed = UnpackedBlock::parse(bytes);
    if (!parsed)
        return;
    const UnpackedBlock block = std::move(*parsed); // Like a reader; texts must keep their addresses.
    holdsOrAborts(block.text().size() <= bytes.size() + block.rowCount() * kLongestShared,
                  "more text came out than can have gone in");
    checkRows(block);
}

} // namespace

void fuzzBlock(std::span<const std::byte> bytes) {
    parseAndCheck(bytes);
    parseAndCheck(resealed(bytes));
}

} // namespace tavix::repository
