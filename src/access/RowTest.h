#pragma once

#include "blocks/BlockEvaluator.h"
#include "expression/Program.h"
#include "source/RowReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavix {

/// Decides which rows of a source are wanted.
class RowTest {
  public:
    virtual ~RowTest() = default;
    /// Takes the rows that are not wanted out of `rows`, which are places in the block, ascending. `goOn` is asked now
    /// and then where that takes long; when it answered false the rows are of no use.
    virtual void narrow(const source::RowBlock& block, std::vector<std::uint32_t>& rows,
                        const expression::GoOn& goOn) = 0;
};

/// Rows whose cell in a column, counted from 0, is null.
[[nodiscard]] std::unique_ptr<RowTest> makeNullTest(std::size_t column);
/// Rows whose cell is this text.
[[nodiscard]] std::unique_ptr<RowTest> makeValueTest(std::size_t column, std::string value);
/// Rows whose cell is a text of this character pattern, which is given in full.
[[nodiscard]] std::unique_ptr<RowTest> makePatternTest(std::size_t column, std::string pattern);
/// Rows that pass a condition over the source's columns. Those for which it cannot be evaluated do not, as in a run.
[[nodiscard]] std::unique_ptr<RowTest> makeConditionTest(const expression::Program& condition);

} // namespace tavix
