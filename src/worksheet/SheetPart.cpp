#include "worksheet/SheetPart.h"

#include "worksheet/Records.h"

#include <algorithm>

namespace tavix::worksheet {

void Extent::include(std::uint32_t row, std::uint32_t column) {
    if (endRow == 0)
        *this = {row, row + 1, column, column + 1};
    firstRow = std::min(firstRow, row);
    endRow = std::max(endRow, row + 1);
    firstColumn = std::min(firstColumn, column);
    endColumn = std::max(endColumn, column + 1);
}

void putCells(std::string& out, std::uint32_t row, const std::vector<CellContent>& cells) {
    for (const CellContent& cell : cells) {
        putHeader(out, cell.text ? RecordId::LabelSst : RecordId::Number, cell.text ? 10 : 14);
        put16(out, row);
        put16(out, cell.column);
        put16(out, static_cast<std::uint32_t>(cell.style));
        if (cell.text)
            put32(out, *cell.text);
        else
            putReal(out, cell.number);
    }
}

void countRow(std::uint32_t row, const std::vector<CellContent>& cells, Extent& extent, std::int64_t& texts,
              bool& hasHeader) {
    for (const CellContent& cell : cells) {
        extent.include(row, cell.column);
        texts += cell.text ? 1 : 0;
        hasHeader |= row == 0 && cell.style == Style::Header;
    }
}

void SheetPart::addRow(std::uint32_t row, const std::vector<CellContent>& cells, std::string& buffer) {
    buffer.clear();
    putCells(buffer, row, cells);
    m_cells.append(buffer);
    countRow(row, cells, m_extent, m_texts, m_hasHeader);
}

} // namespace tavix::worksheet
