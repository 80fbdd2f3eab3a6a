#include "tabs/ChartRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

namespace tavix {

namespace {

constexpr std::string_view kFailed = "Error occurred while retrieving visualizations:";
constexpr std::string_view kNone = "No visualization of this table is stored.";

} // namespace

ChartRows::ChartRows() : ListRows({listColumn("Name", 180), listColumn("Description", 360)}, kNone) {}

bool ChartRows::Fill(PrViewer& viewer, int tableId) try {
    using namespace layout;
    const ProfileCursorHandle rows = viewer.getTableCharts(tableId);
    if (!rows)
        return Fail(kFailed, viewer.getErrorString().view());
    std::vector<Chart> charts;
    while (rows->next()) {
        charts.push_back({rows->getColumnValue(ChartName).str(), rows->getColumnValue(ChartDescription).str()});
    }
    m_charts = std::move(charts);
    ShowRecords(m_charts.size());
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

void ChartRows::Clear() {
    m_charts.clear();
    ShowRecords(0);
}

GridCell ChartRows::CellOf(int column, std::size_t record) const {
    const Chart& chart = m_charts.at(record);
    return textCell(column == 0 ? chart.name : chart.description);
}

} // namespace tavix
