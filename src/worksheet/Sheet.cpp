#include "worksheet/Sheet.h"

#include "base/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavix::worksheet {

namespace {

/// From here on doubles skip integers.
constexpr std::int64_t kMaxExactInteger = std::int64_t{1} << 53;
/// Old programs show longer texts with the format "@" as "####".
constexpr std::size_t kMaxMarkedText = 255;
constexpr int kMaxContentWidth = 60;
constexpr int kMaxNumberWidth = 12; ///< more is not shown in the general format
constexpr int kMaxColumnWidth = 255;
constexpr std::int64_t kLastRow = kMaxRows - 1;

Style styleOf(const CellText& text, bool header) {
    if (header)
        return Style::Header;
    if (text.hasLineBreak())
        return Style::WrappedText;
    return text.length() <= kMaxMarkedText ? Style::Text : Style::Plain;
}

} // namespace

Status Range::putText(std::string_view utf8) {
    return m_sheet->putText(m_cell, utf8);
}

Status Range::putHeader(std::string_view utf8) {
    return m_sheet->putHeader(m_cell, utf8);
}

Status Range::putNumber(double value) {
    return m_sheet->putNumber(m_cell, value);
}

Status Range::putInteger(std::int64_t value) {
    return m_sheet->putInteger(m_cell, value);
}

Sheet::Sheet(WorkbookStore& store, std::string name) : m_store(&store), m_name(std::move(name)) {
    m_parts.push_back(std::make_unique<SheetPart>(store.spools, m_name));
}

void Sheet::setName(std::string name) {
    m_parts.front()->rename(name);
    m_name = std::move(name);
}

Result<Range> Sheet::range(std::string_view cellName) {
    Result<Cell> cell = parseCellName(cellName);
    if (!cell)
        return cell.error();
    return Range(*this, *cell);
}

Status Sheet::putText(const Cell& cell, std::string_view utf8) {
    return putStyledText(cell, utf8, false);
}

Status Sheet::putHeader(const Cell& cell, std::string_view utf8) {
    return putStyledText(cell, utf8, true);
}

Status Sheet::putStyledText(const Cell& cell, std::string_view utf8, bool header) {
    if (Status there = goTo(cell); !there)
        return there;
    if (utf8.empty()) {
        remove(cell.column);
        return {};
    }
    CellText& text = m_store->text;
    text.assign(utf8);
    m_store->cutTexts += text.cut() ? 1 : 0;
    CellContent content;
    content.column = static_cast<std::uint16_t>(cell.column);
    content.style = styleOf(text, header);
    content.text = m_store->strings.add(utf8, text);
    place(content);
    widen(cell.column, text.displayWidth(kMaxContentWidth));
    return m_store->spools.status();
}

Status Sheet::putNumber(const Cell& cell, double value) {
    if (!std::isfinite(value))
        return putText(cell, formatReal(value));
    if (Status there = goTo(cell); !there)
        return there;
    place({static_cast<std::uint16_t>(cell.column), Style::Plain, std::nullopt, value});
    widen(cell.column, std::min(static_cast<int>(formatReal(value).size()), kMaxNumberWidth));
    return {};
}

Status Sheet::putInteger(const Cell& cell, std::int64_t value) {
    if (value > kMaxExactInteger || value < -kMaxExactInteger)
        return putText(cell, formatInteger(value));
    if (Status there = goTo(cell); !there)
        return there;
    place({static_cast<std::uint16_t>(cell.column), Style::Integer, std::nullopt, static_cast<double>(value)});
    widen(cell.column, static_cast<int>(formatInteger(value).size()));
    return {};
}

Status Sheet::setColumnWidth(int column, double digits) {
    if (column < 0 || column >= kMaxColumns || !(digits >= 0 && digits <= kMaxColumnWidth))
        return Error{fmt::format("Column {} cannot be {:g} digits wide", column + 1, digits)};
    m_widths.set[static_cast<std::size_t>(column)] = digits;
    return {};
}

void Sheet::widen(int column, int digits) {
    int& width = m_widths.content[static_cast<std::size_t>(column)];
    width = std::max(width, digits);
}

void Sheet::place(const CellContent& content) {
    if (m_cells.empty() || m_cells.back().column < content.column) {
        m_cells.push_back(content);
        return;
    }
    auto at = std::lower_bound(m_cells.begin(), m_cells.end(), content.column,
                               [](const CellContent& cell, std::uint16_t column) { return cell.column < column; });
    if (at->column == content.column)
        *at = content;
    else
        m_cells.insert(at, content);
}

void Sheet::remove(int column) {
    std::erase_if(m_cells, [column](const CellContent& cell) { return cell.column == column; });
}

Status Sheet::goTo(const Cell& cell) {
    if (cell.column < 0 || cell.column >= kMaxColumns)
        return Error{fmt::format("Column {} does not fit into the worksheet \"{}\", which has {}", cell.column + 1,
                                 m_name, kMaxColumns)};
    if (cell.row < m_row)
        return Error{fmt::format("Row {} of the worksheet \"{}\" is already written", cell.row + 1, m_name)};
    if (cell.row == m_row)
        return {};
    // Reject far rows before creating the empty sheets up to them.
    if (Status room = m_store->names.checkRoom(rowInPart(cell.row) / kMaxRows); !room)
        return room;
    while (rowInPart(cell.row) >= kMaxRows)
        if (Status further = continueOnFurtherSheet(); !further)
            return further;
    finishRow();
    m_row = cell.row;
    return m_store->spools.status();
}

void Sheet::finishRow() {
    if (m_row == 0)
        std::copy_if(m_cells.begin(), m_cells.end(), std::back_inserter(m_header),
                     [](const CellContent& cell) { return cell.style == Style::Header; });
    if (!m_cells.empty())
        m_parts.back()->addRow(static_cast<std::uint32_t>(rowInPart(m_row)), m_cells, m_buffer);
    m_cells.clear();
}

/// Called for a row that does not fit into the last part. The last row of that part is needed for the note, so its
/// content moves to the new part.
Status Sheet::continueOnFurtherSheet() {
    Result<std::string> name = m_store->names.addFurther(m_name, static_cast<int>(m_parts.size()) + 1);
    if (!name)
        return name.error();
    if (rowInPart(m_row) < kLastRow)
        finishRow();

    const std::string note = fmt::format("Continued on worksheet \"{}\"", *name);
    m_store->text.assign(note);
    CellContent content;
    content.style = Style::Header;
    content.text = m_store->strings.add(note, m_store->text);
    m_parts.back()->addRow(static_cast<std::uint32_t>(kLastRow), {content}, m_buffer);

    m_parts.push_back(std::make_unique<SheetPart>(m_store->spools, std::move(*name)));
    m_firstRow += kLastRow - m_headerRows;
    m_headerRows = m_header.empty() ? 0 : 1;
    m_row = std::max(m_row, m_firstRow);
    if (!m_header.empty())
        m_parts.back()->addRow(0, m_header, m_buffer);
    return m_store->spools.status();
}

std::vector<SheetImage> Sheet::images() const {
    std::vector<SheetImage> images;
    for (const auto& part : m_parts) {
        SheetImage image;
        image.part = part.get();
        image.widths = &m_widths;
        image.extent = part->extent();
        image.texts = part->texts();
        image.hasHeader = part->hasHeader();
        images.push_back(std::move(image));
    }
    SheetImage& last = images.back();
    const auto row = static_cast<std::uint32_t>(rowInPart(m_row));
    putCells(last.lastRow, row, m_cells);
    countRow(row, m_cells, last.extent, last.texts, last.hasHeader);
    return images;
}

} // namespace tavix::worksheet
