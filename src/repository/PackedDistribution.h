#pragma once

#include "base/Result.h"
#include "repository/BlockPacker.h"
#include "repository/Facts.h"
#include "repository/PackedBlock.h"
#include "repository/UnpackedBlock.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// The packed form of a distribution: blocks of rows, see docs/formats/distribution.md.
namespace tavix::repository {

/// Splits a distribution into blocks, one after the other. The rows are borrowed, never copied as a whole.
class DistributionPacker {
  public:
    explicit DistributionPacker(std::span<const ValueCount> rows) : m_rows(rows) {}

    /// Packs the next block; false at the end. Fails for a value longer than kLongestValue and for a second null.
    [[nodiscard]] Result<bool> next();

    /// The current block; valid until the next call of next().
    [[nodiscard]] const PackedBlock& block() const { return m_block; }

  private:
    std::span<const ValueCount> m_rows;
    std::size_t m_next = 0;
    BlockPacker m_packer;
    PackedBlock m_block;
};

/// The 64-bit hash that matches values without their texts.
[[nodiscard]] std::uint64_t hashValue(std::string_view value);

/// The hashes of all non-null values, ascending.
[[nodiscard]] std::vector<std::uint64_t> sortedHashes(std::span<const ValueCount> rows);

} // namespace tavix::repository
