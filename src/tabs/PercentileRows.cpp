#include "tabs/PercentileRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

namespace tavix {

namespace {

constexpr int kWidth = 180;
constexpr int kValueColumn = 1;
constexpr std::string_view kFailed = "Error occurred while retrieving percentiles:";

/// The number at the start of an interval such as "2.5 %".
std::string figureOf(std::string_view interval) {
    return std::string(interval.substr(0, interval.find_first_not_of("0123456789.")));
}

} // namespace

PercentileRows::PercentileRows() : ListRows({listColumn("Interval", kWidth), listColumn("Value", kWidth)}) {}

bool PercentileRows::Fill(PrViewer& viewer, const FieldRecord& field) try {
    const int count = viewer.getPercentilesCount(field.id);
    std::vector<Percentile> percentiles;
    if (count != 0) {
        const ProfileCursorHandle rows = count > 0 ? viewer.getPercentiles(field.id) : nullptr;
        if (!rows)
            return Fail(kFailed, viewer.getErrorString().view());
        while (rows->next()) {
            percentiles.push_back({rows->getColumnValue(layout::PercentileInterval).str(),
                                   rows->getColumnValue(layout::PercentileValue)});
        }
    }
    m_percentiles = std::move(percentiles);
    SetToolTip(kValueColumn, field.quantileRule.empty() ? "" : "Value, by " + field.quantileRule);
    if (count == 0)
        ShowPlaceholder();
    else
        ShowRecords(m_percentiles.size());
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

void PercentileRows::Clear() {
    m_percentiles.clear();
    ShowRecords(0);
}

GridCell PercentileRows::CellOf(int column, std::size_t record) const {
    const Percentile& percentile = m_percentiles.at(record);
    if (column == kValueColumn)
        return valueCell(percentile.value);
    GridCell cell = textCell(percentile.interval);
    cell.order = figureOf(percentile.interval);
    return cell;
}

} // namespace tavix
