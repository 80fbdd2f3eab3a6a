#include "tabs/ListRows.h"

#include "base/NumberText.h"
#include "grid/CellOrder.h"

#include <algorithm>
#include <numeric>

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
    struct Keyed {
        CellOrderKey key;
        std::uint32_t record;
    };
    const std::int64_t pinned = column == 0 ? m_pinned : kNoPin;
    std::vector<Keyed> keyed;
    keyed.reserve(m_order.size());
    for (const std::uint32_t record : m_order) {
        if (record != pinned)
            keyed.push_back({CellOrderKey(CellOf(column, record).text), record});
    }
    std::stable_sort(keyed.begin(), keyed.end(), [descending](const Keyed& a, const Keyed& b) {
        return descending ? b.key < a.key : a.key < b.key;
    });
    std::transform(keyed.begin(), keyed.end(), m_order.begin(), [](const Keyed& each) { return each.record; });
    if (pinned != kNoPin)
        m_order.back() = static_cast<std::uint32_t>(pinned);
    return true;
}

void ListRows::SetToolTip(int column, std::string text) {
    m_columns.at(static_cast<std::size_t>(column)).toolTip = std::move(text);
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
