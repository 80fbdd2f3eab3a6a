#pragma once

#include "worksheet/Limits.h"
#include "worksheet/Spool.h"
#include "worksheet/Styles.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::worksheet {

/// The content of a cell: the number of a shared text, or a number.
struct CellContent {
    std::uint16_t column = 0;
    Style style = Style::Plain;
    std::optional<std::uint32_t> text;
    double number = 0; ///< without a text
};

/// Widths in digits; a column without one is as wide as its content.
struct ColumnWidths {
    std::array<double, kMaxColumns> set;
    std::array<int, kMaxColumns> content{};

    ColumnWidths() { set.fill(-1); }
};

/// The range of non-empty cells; ends are exclusive.
struct Extent {
    std::uint32_t firstRow = 0;
    std::uint32_t endRow = 0;
    std::uint32_t firstColumn = 0;
    std::uint32_t endColumn = 0;

    void include(std::uint32_t row, std::uint32_t column);
};

/// Appends the records of a row's cells, given in the order of their columns.
void putCells(std::string& out, std::uint32_t row, const std::vector<CellContent>& cells);

/// One sheet of the file: its finished rows.
class SheetPart {
  public:
    SheetPart(SpoolStore& store, std::string name) : m_name(std::move(name)), m_cells(store) {}

    /// `row` is below 65,536 and above the row added before; `buffer` is scratch space.
    void addRow(std::uint32_t row, const std::vector<CellContent>& cells, std::string& buffer);
    void rename(std::string name) { m_name = std::move(name); }

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] const Spool& cells() const { return m_cells; }
    [[nodiscard]] const Extent& extent() const { return m_extent; }
    [[nodiscard]] std::int64_t texts() const { return m_texts; }
    /// Whether the first row holds headers.
    [[nodiscard]] bool hasHeader() const { return m_hasHeader; }

  private:
    std::string m_name;
    Spool m_cells;
    Extent m_extent;
    std::int64_t m_texts = 0;
    bool m_hasHeader = false;
};

/// Everything needed to write one sheet of the file.
struct SheetImage {
    const SheetPart* part = nullptr; ///< its finished rows; lives as long as the workbook
    const ColumnWidths* widths = nullptr;
    std::string lastRow; ///< the records of the unfinished row
    Extent extent;       ///< including that row
    std::int64_t texts = 0;
    bool hasHeader = false;
};

/// Adds a row to the measures of a sheet.
void countRow(std::uint32_t row, const std::vector<CellContent>& cells, Extent& extent, std::int64_t& texts,
              bool& hasHeader);

} // namespace tavix::worksheet
