#include "tabs/DistributionRows.h"

#include "base/NumberText.h"
#include "report/CountText.h"

#include <algorithm>

namespace tavix {

namespace {

constexpr int kWidth = 150;
constexpr std::string_view kOther = "Other";

GridColumn shareColumn(std::string_view heading, std::string_view key) {
    GridColumn column = listColumn(heading, kWidth, CellAlignment::Right);
    column.key = key;
    column.isOptional = true;
    column.isShownAtFirst = false;
    return column;
}

std::vector<GridColumn> withFigures(DistributionKind kind, std::vector<GridColumn> columns) {
    columns.push_back(listColumn("Count", kWidth, CellAlignment::Right));
    columns.push_back(listColumn("Percentage", kWidth, CellAlignment::Right));
    columns.push_back(
        shareColumn(kind == DistributionKind::Frequency ? "Non-null Share" : "Share of Records", "OtherShare"));
    columns.push_back(shareColumn("Cumulative Share", "CumulativeShare"));
    return columns;
}

/// "12.34 %", sorted by the exact share.
GridCell signedPercentCell(const std::optional<double>& percent) {
    if (!percent)
        return textCell({}, CellAlignment::Right);
    GridCell cell = textCell(formatFixed(*percent, 2) + " %", CellAlignment::Right);
    cell.order = formatReal(*percent);
    return cell;
}

} // namespace

DistributionRows::DistributionRows(DistributionKind kind, const std::vector<GridColumn>& valueColumns)
    : ListRows(withFigures(kind, valueColumns)), m_kind(kind), m_countColumn(static_cast<int>(valueColumns.size())) {}

void DistributionRows::Show(Distribution distribution, const FieldRecord& field, bool isFiltered,
                            std::string_view emptyText) {
    const bool isOfValues = m_kind == DistributionKind::Frequency;
    const DistributionShare share(m_kind, isFiltered, distribution.total);
    const DistributionShare otherShare(isOfValues ? DistributionKind::Pattern : DistributionKind::Frequency, false,
                                       isOfValues ? patternTotal(field.metrics) : valueTotal(field.metrics));
    const std::string more = distribution.warning.empty() ? std::string() : "\n" + distribution.warning;
    Take(std::move(distribution), share, otherShare);
    const struct {
        std::string mark;
        std::string toolTip;
    } columns[] = {{share.BaseText(), "Share " + share.BaseText() + more},
                   {otherShare.BaseText(), "Share " + otherShare.BaseText() + more},
                   {share.BaseText(), "Share " + share.BaseText() + " of the row and all with more rows" + more}};
    int column = m_countColumn;
    for (const auto& [mark, toolTip] : columns) {
        SetMark(++column, mark);
        SetToolTip(column, toolTip);
    }
    SetEmptyText(std::string(emptyText) + more);
}

void DistributionRows::Take(Distribution distribution, const DistributionShare& share,
                            const DistributionShare& otherShare) {
    m_distribution = std::move(distribution);
    m_share = share;
    m_otherShare = otherShare;
    m_cumulative.clear();
    m_cumulative.reserve(m_distribution.entries.size());
    std::int64_t sum = 0;
    for (const Distribution::Entry& entry : m_distribution.entries) {
        if (__builtin_add_overflow(sum, entry.count, &sum))
            sum = m_distribution.total;
        m_cumulative.push_back(sum);
    }
    for (int column = m_countColumn + 1; column < GetColumnCount(); ++column) {
        SetMark(column, {});
        SetToolTip(column, {});
    }
    const std::size_t entries = m_distribution.entries.size();
    if (m_distribution.other != 0)
        ShowRecords(entries + 1, static_cast<std::int64_t>(entries));
    else
        ShowRecords(entries);
}

void DistributionRows::ShowNotCalculated() {
    Take({}, {}, {});
    ShowPlaceholder();
}

void DistributionRows::Clear() {
    SetEmptyText({});
    Take({}, {}, {});
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
    if (column < m_countColumn && !isOther)
        return EntryCell(column, record);
    if (column < m_countColumn) {
        GridCell cell = textCell(column == 0 ? kOther : std::string_view());
        const std::string_view noun = m_kind == DistributionKind::Pattern ? "pattern" : "value";
        // Copied and found as "Other" alone.
        if (column == 0 && m_distribution.otherEntries > 0)
            cell.shown = cell.text + " (" + countOf(m_distribution.otherEntries, noun) + ")";
        return cell;
    }
    const std::int64_t count = isOther ? m_distribution.other : Entry(record).count;
    switch (column - m_countColumn) {
    case 0:
        return countCell(count);
    case 1:
        return ShareCell(count, !isOther);
    case 2:
        return OtherShareCell(record, count);
    default:
        return signedPercentCell(m_share.PercentOf(isOther ? m_distribution.total : m_cumulative[record]));
    }
}

GridCell DistributionRows::ShareCell(std::int64_t count, bool hasBar) const {
    const std::optional<double> percent = m_share.PercentOf(count);
    if (!percent)
        return textCell({}, CellAlignment::Right);
    return percentCell(*percent, hasBar ? std::clamp(*percent / 100, 0.0, 1.0) : kNoBar);
}

// Null is not among the non-null values.
GridCell DistributionRows::OtherShareCell(std::size_t record, std::int64_t count) const {
    if (m_kind == DistributionKind::Pattern)
        return signedPercentCell(m_otherShare.PercentOf(count));
    if (!IsOtherRecord(record) && Entry(record).value.isNull())
        return textCell({}, CellAlignment::Right);
    const std::int64_t nulls = IsOtherRecord(record) ? std::min(m_distribution.otherNulls, count) : 0;
    return signedPercentCell(m_otherShare.PercentOf(count - nulls));
}

} // namespace tavix
