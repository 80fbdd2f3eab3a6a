#include "access/RowTest.h"

#include "pattern/CharacterPattern.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

namespace tavix {

namespace {

using source::Cell;

/// The most bytes of text passed to a condition at once, unless a single text is longer.
constexpr std::size_t kBytesAtOnce = std::size_t{64} << 20;
constexpr std::size_t kRowsAtOnce = 4096;

/// A test of one cell.
template <typename Test>
class CellTest final : public RowTest {
  public:
    CellTest(std::size_t column, Test test) : m_column(column), m_test(std::move(test)) {}

    void narrow(const source::RowBlock& block, std::vector<std::uint32_t>& rows,
                const expression::GoOn& /*goOn*/) override {
        const std::vector<Cell>& cells = block.columns[m_column];
        std::erase_if(rows, [&](std::uint32_t row) { return !m_test(cells[row]); });
    }

  private:
    std::size_t m_column;
    Test m_test;
};

std::string_view textOf(const Cell& cell) {
    return {cell.data, cell.size};
}

class ConditionTest final : public RowTest {
  public:
    ConditionTest(const expression::Program& condition, const std::vector<std::size_t>& columns)
        : m_evaluator(condition), m_views(columns.size()) {
        for (std::size_t field = 0; field < m_views.size(); ++field)
            if (condition.uses(field))
                m_columns.push_back({field, columns[field], {}, {}, {}});
    }

    void narrow(const source::RowBlock& block, std::vector<std::uint32_t>& rows,
                const expression::GoOn& goOn) override {
        std::size_t kept = 0;
        for (std::size_t first = 0; first < rows.size();) {
            const auto slice = gather(block, std::span(rows).subspan(first));
            for (const std::uint32_t passing : m_evaluator.passing({slice, m_views}, goOn))
                rows[kept++] = rows[first + passing];
            first += slice;
        }
        rows.resize(kept);
    }

  private:
    struct Column {
        std::size_t field = 0;  ///< of the condition
        std::size_t column = 0; ///< of the source
        std::string bytes;
        std::vector<std::uint32_t> ends;
        std::vector<std::uint8_t> nulls;
    };

    /// Copies the columns that the condition uses, for as many rows as fit together.
    std::size_t gather(const source::RowBlock& block, std::span<const std::uint32_t> rows) {
        const std::size_t most = std::min(rows.size(), kRowsAtOnce);
        for (Column& column : m_columns) {
            column.bytes.clear();
            column.ends.clear();
            column.nulls.clear();
        }
        std::size_t taken = 0;
        for (std::size_t bytes = 0; taken < most && (taken == 0 || bytes < kBytesAtOnce); ++taken) {
            for (Column& column : m_columns) {
                const Cell& cell = block.columns[column.column][rows[taken]];
                if (!cell.isNull)
                    column.bytes.append(cell.data, cell.size);
                column.ends.push_back(static_cast<std::uint32_t>(column.bytes.size()));
                column.nulls.push_back(cell.isNull ? 1 : 0);
                bytes += cell.size;
            }
        }
        for (const Column& column : m_columns)
            m_views[column.field] = {column.bytes, column.ends, {}, column.nulls};
        return taken;
    }

    expression::BlockEvaluator m_evaluator;
    std::vector<Column> m_columns;
    std::vector<expression::BlockColumn> m_views; ///< one for each field of the condition
};

} // namespace

std::unique_ptr<RowTest> makeNullTest(std::size_t column) {
    const auto test = [](const Cell& cell) { return cell.isNull; };
    return std::make_unique<CellTest<decltype(test)>>(column, test);
}

std::unique_ptr<RowTest> makeValueTest(std::size_t column, std::string value) {
    auto test = [value = std::move(value)](const Cell& cell) { return !cell.isNull && textOf(cell) == value; };
    return std::make_unique<CellTest<decltype(test)>>(column, std::move(test));
}

std::unique_ptr<RowTest> makePatternTest(std::size_t column, std::string pattern) {
    auto test = [wanted = std::move(pattern), found = std::string()](const Cell& cell) mutable {
        if (cell.isNull)
            return false;
        found.clear();
        pattern::appendCharacterPattern(found, textOf(cell));
        return found == wanted;
    };
    return std::make_unique<CellTest<decltype(test)>>(column, std::move(test));
}

std::unique_ptr<RowTest> makeConditionTest(const expression::Program& condition,
                                           const std::vector<std::size_t>& columns) {
    return std::make_unique<ConditionTest>(condition, columns);
}

} // namespace tavix
