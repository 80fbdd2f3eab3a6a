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

/// Selects rows of a source.
class RowTest {
  public:
    virtual ~RowTest() = default;
    /// Removes from `rows`, ascending indices in the block, those that do not match. In long tests `goOn` is called now
    /// and then; after it returns false, the rows are meaningless.
    virtual void narrow(const source::RowBlock& block, std::vector<std::uint32_t>& rows,
                        const expression::GoOn& goOn) = 0;
};

/// Rows whose cell in a column, counted from 0, is null.
[[nodiscard]] std::unique_ptr<RowTest> makeNullTest(std::size_t column);
/// Rows whose cell is this text.
[[nodiscard]] std::unique_ptr<RowTest> makeValueTest(std::size_t column, std::string value);
/// Rows whose cell is a text with this character pattern, in its full form.
[[nodiscard]] std::unique_ptr<RowTest> makePatternTest(std::size_t column, std::string pattern);
/// Rows that pass a condition; `columns` gives the source's column for each of its fields. Rows for which it cannot be
/// evaluated do not pass, as in a run.
[[nodiscard]] std::unique_ptr<RowTest> makeConditionTest(const expression::Program& condition,
                                                         const std::vector<std::size_t>& columns);

} // namespace tavix
