#include "tabs/DamageRows.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "report/CountText.h"
#include "report/DamagedRows.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr std::string_view kFailed = "Error occurred while retrieving the execution log:";

std::vector<GridColumn> columnsFor(const std::vector<DamagedRow>& rows, bool hasFiles) {
    std::vector<GridColumn> columns;
    if (hasFiles)
        columns.push_back(listColumn("File", 180));
    const bool isLine = rows.empty() || rows.front().isLine;
    columns.push_back(listColumn(isLine ? "Line" : "Row", 90, CellAlignment::Right));
    columns.push_back(listColumn("Damage", 300));
    columns.back().takesRest = true;
    return columns;
}

std::string headingFor(const TableIdentity& table, std::size_t listed) {
    const auto rows = static_cast<std::int64_t>(listed);
    const std::string whole = countOf(table.damagedRecords, "damaged row") + " of " + table.displayName();
    if (rows == 0)
        return "The run has not listed the " + whole + ".";
    return (rows < table.damagedRecords ? "The first " + groupedCount(rows) + " of " : "") + whole +
           ", as the run read it.";
}

} // namespace

DamageRows::DamageRows() : ListRows(columnsFor({}, false)) {}

bool DamageRows::Fill(PrViewer& viewer, const TableIdentity& table) try {
    const std::vector<DamagedRow> rows = readDamagedRows(viewer, table.id);
    const std::string change = changeOfFile(viewer, table.id);
    m_hasFiles = std::any_of(rows.begin(), rows.end(), [](const DamagedRow& row) { return !row.file.empty(); });
    SetColumns(columnsFor(rows, m_hasFiles));
    m_rows.clear();
    for (const DamagedRow& row : rows)
        m_rows.push_back({row.file, formatInteger(row.number), row.reason});
    m_heading = headingFor(table, m_rows.size());
    if (!change.empty())
        m_heading += "\n" + change;
    ShowRecords(m_rows.size());
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

void DamageRows::Clear() {
    m_rows.clear();
    ShowRecords(0);
}

GridCell DamageRows::CellOf(int column, std::size_t record) const {
    const Row& row = m_rows.at(record);
    switch (m_hasFiles ? column : column + 1) {
    case 0:
        return textCell(row.file);
    case 1:
        return textCell(row.number, CellAlignment::Right);
    default:
        return textCell(row.reason);
    }
}

} // namespace tavix
