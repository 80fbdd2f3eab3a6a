#pragma once

#include "access/FilterCode.h"
#include "base/KvbString.h"
#include "base/Result.h"
#include "blocks/BlockEvaluator.h"
#include "repository/PackedDistribution.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace tavix {

/// A filter text, compiled, and what came of it so far. It is applied to the blocks of one distribution in their order.
class DistributionFilter {
  public:
    /// `text` is expression code with or without a condition block before it. The error says line and column in the
    /// code.
    [[nodiscard]] static Result<std::unique_ptr<DistributionFilter>> compile(std::string_view text);

    /// The rows of the block that pass, ascending; valid until the next call. `firstRow` is the number of the block's
    /// first row in the distribution. Columns that the condition does not use are not looked at, nor are rows that the
    /// count alone rules out. Fails on a block that no distribution has, without memory, and when `goOn`, which is
    /// asked within a block whose rows make long texts, answers false.
    [[nodiscard]] Result<std::span<const std::uint32_t>>
    passing(const repository::UnpackedBlock& block, std::int64_t firstRow, const expression::GoOn& goOn = {});
    /// Whether no row behind the last block can pass, for counts only fall.
    [[nodiscard]] bool isDone() const { return m_isDone; }
    /// Of rows that could not be evaluated and therefore do not pass: how many, the first one, and why. Null without.
    [[nodiscard]] KvbString warning() const;

  private:
    explicit DistributionFilter(const expression::Program& program);
    /// Rows `first` to `last`, the latter not included, as columns.
    [[nodiscard]] expression::Block columnsOf(const repository::UnpackedBlock& block, std::size_t first,
                                              std::size_t last);

    bool m_usesValue;
    bool m_usesCount;
    expression::IntegerRange m_range; ///< of the count, for a row to pass
    expression::BlockEvaluator m_evaluator;
    bool m_isDone;
    std::uint64_t m_failures = 0;
    std::int64_t m_firstFailed = 0; ///< the row's number in the distribution
    std::string m_firstFailure;

    // The block that is looked at, as far as it has to be made.
    expression::BlockColumn m_columns[FilterColumns];
    std::vector<std::uint32_t> m_ends;
    std::vector<std::uint64_t> m_counts;
    std::vector<std::uint8_t> m_nulls;
    std::vector<std::uint32_t> m_rows;
};

} // namespace tavix
