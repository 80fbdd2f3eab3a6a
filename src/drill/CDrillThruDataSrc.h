#pragma once

#include "drill/DrillRows.h"
#include "grid/CUGDataSource.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The rows of a drill-through in the grid: cells show the texts as they were read.
class CDrillThruDataSrc final : public CUGDataSource {
  public:
    /// What the heading of a column shows beside its name; the numbers are the grid's cell types.
    enum class SortArrow { None = -1, Up, Down };

    /// Replaces rows and columns; the rows are in the order in which they were read, without a sort arrow.
    void SetRows(DrillRows rows);
    [[nodiscard]] const DrillRows& GetRows() const { return m_rows; }

    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_rows.columns().size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override { return m_rows.count(); }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    /// The place in which the row was read.
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return RecordAt(row); }
    /// In the order of CellOrderKey, which is total. Numbers thus come before texts in a column that mixes them, and a
    /// null, which is an empty text here, between the two. With fewer than two rows nothing happens.
    bool Sort(int column, bool descending) override;

    /// As GetCell() without a copy; valid until the rows are replaced.
    [[nodiscard]] DrillRows::Cell GetText(int column, std::int64_t row) const {
        return m_rows.cell(column, RecordAt(row));
    }
    [[nodiscard]] kvbType GetType(int column) const {
        return m_rows.columns().at(static_cast<std::size_t>(column)).type;
    }
    /// Up for ascending and down for descending in the sort column, else none.
    [[nodiscard]] SortArrow GetSortArrow(int column) const;

  private:
    [[nodiscard]] std::uint32_t RecordAt(std::int64_t row) const {
        return m_order.empty() ? static_cast<std::uint32_t>(row) : m_order[static_cast<std::size_t>(row)];
    }
    [[nodiscard]] int WidthOf(std::size_t column) const;

    DrillRows m_rows;
    std::vector<std::uint32_t> m_order; ///< records by row; empty as long as they are in the order of reading
    std::vector<int> m_widths;
    int m_sortColumn = -1;
    bool m_descending = false;
};

/// A cell in the order in which the grid shows them.
struct CellPlace {
    std::int64_t row = 0;
    int column = 0;

    bool operator==(const CellPlace&) const = default;
};

enum class SearchDirection { Forward, Backward };

/// The next cell that holds the text, in any case; the search begins with `from`, or behind it (before it, backward)
/// when `beyond` is set, and goes on at the other end. Nothing for an empty text and when no cell holds it.
[[nodiscard]] std::optional<CellPlace> findText(const CDrillThruDataSrc& source, std::string_view text, CellPlace from,
                                                SearchDirection direction, bool beyond);

} // namespace tavix
