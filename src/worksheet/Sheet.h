#pragma once

#include "base/Result.h"
#include "worksheet/CellName.h"
#include "worksheet/SharedStrings.h"
#include "worksheet/SheetNames.h"
#include "worksheet/SheetPart.h"
#include "worksheet/Styles.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::worksheet {

/// Shared by the sheets of one workbook.
struct WorkbookStore {
    explicit WorkbookStore(std::size_t memoryBytes) : spools(memoryBytes), strings(spools) {}

    SpoolStore spools;
    SharedStrings strings;
    SheetNames names;
    CellText text;             ///< a buffer
    std::int64_t cutTexts = 0; ///< texts that were cut
};

class Sheet;

/// One cell of a sheet; valid as long as its workbook.
class Range {
  public:
    Range(Sheet& sheet, const Cell& cell) : m_sheet(&sheet), m_cell(cell) {}

    [[nodiscard]] const Cell& cell() const { return m_cell; }
    /// The cell to the right. After the last column, writing to it fails.
    [[nodiscard]] Range next() const { return {*m_sheet, {m_cell.row, m_cell.column + 1}}; }

    /// Like the functions of Sheet.
    Status putText(std::string_view utf8);
    Status putHeader(std::string_view utf8);
    Status putNumber(double value);
    Status putInteger(std::int64_t value);

  private:
    Sheet* m_sheet;
    Cell m_cell;
};

/// A sheet of a workbook, as long as necessary: rows beyond the 65,536 of a sheet in the file continue on "Name (2)"
/// and so on, which repeat the header cells of the first row; the last row of a full sheet refers to the next one.
///
/// Rows are written from top to bottom: a row below the current one may be written, leaving empty rows between them,
/// and then the rows above are final. The cells of the current row may be written repeatedly and in any order. Memory
/// does not grow with the rows. All functions that write fail for a column after the 256th, for a final row, and if the
/// store of rows until the save is full; a cell that could not be written is unchanged.
class Sheet {
  public:
    /// Created by Workbook only.
    Sheet(WorkbookStore& store, std::string name);

    [[nodiscard]] const std::string& name() const { return m_name; }
    /// The cell of a name such as "A1"; fails for an invalid one.
    [[nodiscard]] Result<Range> range(std::string_view cellName);

    /// Texts beyond 32,767 UTF-16 units are cut and counted; an empty text leaves the cell empty. A text stays a text,
    /// whatever it looks like.
    Status putText(const Cell& cell, std::string_view utf8);
    /// A bold text. If its row is the first, the row stays visible while scrolling.
    Status putHeader(const Cell& cell, std::string_view utf8);
    /// Infinities and NaN become the texts of formatReal().
    Status putNumber(const Cell& cell, double value);
    /// Beyond 2^53, where the format's numbers skip integers, writes a text with all digits.
    Status putInteger(const Cell& cell, std::int64_t value);

    /// In digits of the standard font, 0 to 255. Without this a column is as wide as its content, between the usual
    /// width and 60 digits.
    /// usual width and 60 digits.
    Status setColumnWidth(int column, double digits);

    /// Whether rows continue on another sheet of the file.
    [[nodiscard]] bool continued() const { return m_parts.size() > 1; }

    /// For writing the file: the sheets of the file in order, including the current row.
    [[nodiscard]] std::vector<SheetImage> images() const;

  private:
    friend class Workbook;

    void setName(std::string name);
    [[nodiscard]] Status goTo(const Cell& cell);
    [[nodiscard]] Status putStyledText(const Cell& cell, std::string_view utf8, bool header);
    [[nodiscard]] Status continueOnFurtherSheet();
    void place(const CellContent& content);
    void remove(int column);
    void finishRow();
    [[nodiscard]] std::int64_t rowInPart(std::int64_t row) const { return row - m_firstRow + m_headerRows; }
    void widen(int column, int digits);

    WorkbookStore* m_store;
    std::string m_name;
    std::vector<std::unique_ptr<SheetPart>> m_parts;
    std::int64_t m_firstRow = 0;       ///< of the last part, counted over all parts
    std::int64_t m_headerRows = 0;     ///< rows of the last part that repeat the header
    std::int64_t m_row = 0;            ///< the current one, counted over all parts
    std::vector<CellContent> m_cells;  ///< of the current row, by column
    std::vector<CellContent> m_header; ///< header cells of the first row
    std::string m_buffer;
    ColumnWidths m_widths;
};

} // namespace tavix::worksheet
