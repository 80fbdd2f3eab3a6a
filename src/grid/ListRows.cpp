#include "grid/ListRows.h"

#include "base/NullText.h"
#include "base/NumberText.h"
#include "grid/CellSort.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace tavix {

GridColumn ListRows::GetColumn(int column) const {
    return m_columns.at(static_cast<std::size_t>(column));
}

GridCell ListRows::GetCell(int column, std::int64_t row) const {
    if (!m_isPlaceholder)
        return CellOf(column, Record(row));
    GridCell cell;
    if (column == 0) {
        cell.text = kNotCalculated;
        cell.state = CellState::Unknown;
    }
    return cell;
}

std::string ListRows::GetEmptyText() const {
    return m_order.empty() ? m_emptyText : std::string();
}

bool ListRows::Sort(int column, bool descending) {
    if (column < 0 || column >= GetColumnCount() || m_isPlaceholder)
        return false;
    const std::int64_t pinned = column == 0 ? m_pinned : kNoPin;
    std::vector<std::uint32_t> records;
    std::vector<std::uint32_t> unknown;
    std::vector<std::string> texts;
    for (const std::uint32_t record : m_order) {
        if (record == pinned)
            continue;
        const GridCell cell = CellOf(column, record);
        if (cell.state == CellState::Unknown) {
            unknown.push_back(record);
            continue;
        }
        records.push_back(record);
        texts.emplace_back(orderText(cell));
    }
    const auto textsFrom = [&texts](std::uint32_t first, std::span<std::string_view> wanted) {
        std::copy_n(texts.begin() + first, wanted.size(), wanted.begin());
    };
    const auto order = sortedByText(static_cast<std::uint32_t>(texts.size()), textsFrom, descending);
    const auto end = std::transform(order.begin(), order.end(), m_order.begin(),
                                    [&records](std::uint32_t at) { return records[at]; });
    std::copy(unknown.begin(), unknown.end(), end);
    if (pinned != kNoPin)
        m_order.back() = static_cast<std::uint32_t>(pinned);
    return true;
}

void ListRows::SetToolTip(int column, std::string text) {
    m_columns.at(static_cast<std::size_t>(column)).toolTip = std::move(text);
}

void ListRows::SetMark(int column, std::string text) {
    m_columns.at(static_cast<std::size_t>(column)).mark = std::move(text);
}

void ListRows::ShowRecords(std::size_t count, std::int64_t pinned) {
    m_order.resize(count);
    std::iota(m_order.begin(), m_order.end(), 0U);
    m_pinned = pinned;
    m_isPlaceholder = false;
    m_error.clear();
}

void ListRows::ShowPlaceholder() {
    ShowRecords(1);
    m_isPlaceholder = true;
}

bool ListRows::Fail(std::string_view leadIn, std::string_view reason) {
    m_error = leadIn;
    m_error += "\n\n";
    m_error += reason;
    return false;
}

GridColumn listColumn(std::string_view heading, int width, CellAlignment alignment) {
    GridColumn column;
    column.heading = heading;
    column.width = width;
    column.alignment = alignment;
    return column;
}

GridCell textCell(std::string_view text, CellAlignment alignment) {
    GridCell cell;
    cell.text = text;
    cell.alignment = alignment;
    return cell;
}

GridCell countCell(std::int64_t count) {
    GridCell cell = textCell(formatInteger(count), CellAlignment::Right);
    if (std::string shown = formatGrouped(count); shown != cell.text)
        cell.shown = std::move(shown);
    return cell;
}

GridCell valueCell(const KvbString& value) {
    GridCell cell = textCell(value.isNull() ? kNullValue : value.view());
    if (value.isNull())
        cell.state = CellState::Null;
    return cell;
}

GridCell percentCell(double percent, double bar) {
    GridCell cell = textCell(formatFixed(percent, 2), CellAlignment::Right);
    cell.bar = bar;
    return cell;
}

} // namespace tavix
