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

/// A compiled filter text and its results so far. It is applied to the blocks of one distribution in their order.
class DistributionFilter {
  public:
    /// `text` is expression code, perhaps after a condition block; now() in it means the date `now`. The error gives
    /// line and column in the code.
    [[nodiscard]] static Result<std::unique_ptr<DistributionFilter>>
    compile(std::string_view text, std::int64_t now = expression::thisMoment());

    /// The rows of the block that pass, ascending; valid until the next call. `firstRow` is the number of the block's
    /// first row in the distribution. Does not read columns that the condition does not use, nor evaluate rows that the
    /// count alone excludes. Fails for an impossible block, without memory, and if `goOn` returns false, which is
    /// called within a block whose rows make long texts.
    [[nodiscard]] Result<std::span<const std::uint32_t>>
    passing(const repository::UnpackedBlock& block, std::int64_t firstRow, const expression::GoOn& goOn = {});
    /// Whether no row after the last block can pass, because counts descend.
    [[nodiscard]] bool isDone() const { return m_isDone; }
    /// The number of rows that could not be evaluated and therefore do not pass, the first one, and the reason. Null
    /// without such rows.
    [[nodiscard]] KvbString warning() const;

  private:
    explicit DistributionFilter(const expression::Program& program);
    /// Rows `first` to `last`, exclusive, as columns.
    [[nodiscard]] expression::Block columnsOf(const repository::UnpackedBlock& block, std::size_t first,
                                              std::size_t last);

    bool m_usesValue;
    bool m_usesCount;
    expression::IntegerRange m_range; ///< bounds of the count of a row that passes
    expression::BlockEvaluator m_evaluator;
    bool m_isDone;
    std::uint64_t m_failures = 0;
    std::int64_t m_firstFailed = 0; ///< the row's number in the distribution
    std::string m_firstFailure;

    // The columns of the current block, as far as they are needed.
    expression::BlockColumn m_columns[FilterColumns];
    std::vector<std::uint32_t> m_ends;
    std::vector<std::uint64_t> m_counts;
    std::vector<std::uint8_t> m_nulls;
    std::vector<std::uint32_t> m_rows;
};

} // namespace tavix
