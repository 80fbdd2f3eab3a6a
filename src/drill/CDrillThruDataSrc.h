#pragma once

#include "drill/DrillRows.h"
#include "drill/DrillSearch.h"
#include "grid/CUGDataSource.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The rows of a drill-through as a data source of the grid. Cells show the texts as they were read.
class CDrillThruDataSrc final : public CUGDataSource {
  public:
    /// Replaces rows and columns. The rows are in the order in which they were read.
    void SetRows(DrillRows rows);
    [[nodiscard]] const DrillRows& GetRows() const { return m_rows; }
    /// Shows only these rows, given in reading order; without them all. They are in reading order until they are
    /// sorted.
    void ShowOnly(std::optional<std::vector<std::uint32_t>> rows);
    [[nodiscard]] bool ShowsAll() const { return !m_shown; }

    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_rows.columns().size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override {
        return m_shown ? static_cast<std::int64_t>(m_shown->size()) : m_rows.count();
    }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    /// The row's index in reading order.
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return RecordAt(row); }
    /// Sorts in the order of CellOrderKey, which is total: numbers come first, then nulls, which are empty texts here,
    /// then texts. Does nothing with fewer than two rows.
    bool Sort(int column, bool descending) override;

    /// As GetCell() without a copy; valid until the rows are replaced.
    [[nodiscard]] DrillRows::Cell GetText(int column, std::int64_t row) const {
        return m_rows.cell(column, RecordAt(row));
    }
    [[nodiscard]] kvbType GetType(int column) const {
        return m_rows.columns().at(static_cast<std::size_t>(column)).type;
    }

  private:
    [[nodiscard]] std::uint32_t RecordAt(std::int64_t row) const {
        if (!m_order.empty())
            return m_order[static_cast<std::size_t>(row)];
        return m_shown ? (*m_shown)[static_cast<std::size_t>(row)] : static_cast<std::uint32_t>(row);
    }
    [[nodiscard]] int WidthOf(std::size_t column) const;

    DrillRows m_rows;
    std::optional<std::vector<std::uint32_t>> m_shown; ///< records in reading order; none: all
    std::vector<std::uint32_t> m_order;                ///< records by row; empty in reading order
    std::vector<int> m_widths;
};

/// The position of a cell in the grid's current order.
struct CellPlace {
    std::int64_t row = 0;
    int column = 0;

    bool operator==(const CellPlace&) const = default;
};

enum class SearchDirection { Forward, Backward };

/// The next cell of the column, or with kAllColumns of any, that contains the text, ignoring case. The search starts at
/// `from`, or with the cell after it in search direction if `beyond` is set, and wraps around. Nothing for an empty
/// text or without a match.
[[nodiscard]] std::optional<CellPlace> findText(const CDrillThruDataSrc& source, std::string_view text, CellPlace from,
                                                SearchDirection direction, bool beyond, int column = kAllColumns);

} // namespace tavix
