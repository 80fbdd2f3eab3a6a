#include "tabs/DistributionRows.h"

#include "base/NumberText.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr int kWidth = 150;
constexpr std::string_view kOther = "Other";

std::vector<GridColumn> withFigures(std::vector<GridColumn> columns) {
    columns.push_back(listColumn("Count", kWidth, CellAlignment::Right));
    columns.push_back(listColumn("Percentage", kWidth, CellAlignment::Right));
    return columns;
}

} // namespace

DistributionRows::DistributionRows(const std::vector<GridColumn>& valueColumns)
    : ListRows(withFigures(valueColumns)), m_countColumn(static_cast<int>(valueColumns.size())) {}

void DistributionRows::Show(Distribution distribution, DistributionKind kind, bool isFiltered,
                            std::string_view emptyText) {
    const DistributionShare share(kind, isFiltered, distribution.total);
    const std::string more = distribution.warning.empty() ? std::string() : "\n" + distribution.warning;
    Take(std::move(distribution), share);
    SetMark(m_countColumn + 1, share.BaseText());
    SetToolTip(m_countColumn + 1, "Share " + share.BaseText() + more);
    SetEmptyText(std::string(emptyText) + more);
}

void DistributionRows::Take(Distribution distribution, const DistributionShare& share) {
    m_distribution = std::move(distribution);
    m_share = share;
    SetMark(m_countColumn + 1, {});
    SetToolTip(m_countColumn + 1, {});
    const std::size_t entries = m_distribution.entries.size();
    if (m_distribution.other != 0)
        ShowRecords(entries + 1, static_cast<std::int64_t>(entries));
    else
        ShowRecords(entries);
}

void DistributionRows::ShowNotCalculated() {
    Take({}, {});
    ShowPlaceholder();
}

void DistributionRows::Clear() {
    SetEmptyText({});
    Take({}, {});
}

void DistributionRows::ShowStopped() {
    Clear();
    SetEmptyText("The reading was stopped before its end.");
}

bool DistributionRows::IsOther(std::int64_t row) const {
    return !IsPlaceholder() && IsOtherRecord(Record(row));
}

KvbString DistributionRows::GetValue(std::int64_t row) const {
    return IsPlaceholder() || IsOther(row) ? KvbString() : Entry(Record(row)).value;
}

std::int64_t DistributionRows::GetOtherRow() const {
    for (std::int64_t row = m_distribution.other != 0 ? GetRowCount() - 1 : -1; row >= 0; --row) {
        if (IsOther(row))
            return row;
    }
    return -1;
}

GridCell DistributionRows::CellOf(int column, std::size_t record) const {
    const bool isOther = IsOtherRecord(record);
    if (column < m_countColumn)
        return !isOther ? EntryCell(column, record) : textCell(column == 0 ? kOther : std::string_view());
    const std::int64_t count = isOther ? m_distribution.other : Entry(record).count;
    if (column == m_countColumn)
        return textCell(formatInteger(count), CellAlignment::Right);
    const std::optional<double> percent = m_share.PercentOf(count);
    if (!percent)
        return textCell({}, CellAlignment::Right);
    return percentCell(*percent, isOther ? kNoBar : std::clamp(*percent / 100, 0.0, 1.0));
}

} // namespace tavix
