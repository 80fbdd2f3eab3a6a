#include "tabs/OutlierRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CountText.h"
#include "tabs/SubjectText.h"

namespace tavix {

namespace {

constexpr int kWidth = 180;
constexpr std::size_t kLow = 0;
constexpr std::size_t kHigh = 1;
constexpr std::string_view kFailed = "Error occurred while retrieving outliers:";

CellIcon fenceIcon(int fence) {
    return fence == 1 ? CellIcon::BeyondFence : fence == 2 ? CellIcon::FarBeyondFence : CellIcon::None;
}

ListBase baseOf(const FieldRecord& field, int low, int high) {
    const std::int64_t distinct = parseInteger(field.metrics[index(MetricId::UniqueCount)].view()).value_or(0);
    ListBase base;
    base.text = "The " + groupedCount(low) + " lowest and the " + groupedCount(high) + " highest of " +
                valuesThatCompare(field, countOf(distinct, "distinct value"));
    if (isNumericType(field.figureTypeCode()))
        base.toolTip = "A mark shows a value beyond a fence: below Q1 − 1.5 · IQR or above Q3 + 1.5 · IQR; a strong "
                       "mark, beyond 3.0 · IQR. Q1 and Q3 are the 25 and 75 % percentiles, and IQR is Q3 − Q1.";
    return base;
}

} // namespace

OutlierRows::OutlierRows() : ListRows({listColumn("Minimum Values", kWidth), listColumn("Maximum Values", kWidth)}) {}

bool OutlierRows::Fill(PrViewer& viewer, const FieldRecord& field) try {
    int low = 0;
    int high = 0;
    if (!viewer.getOutliersCount(field.id, low, high))
        return Fail(kFailed, viewer.getErrorString().view());
    const bool calculated = low != 0 || high != 0;
    std::vector<Pair> pairs;
    if (calculated) {
        const ProfileCursorHandle rows = viewer.getOutliers(field.id);
        if (!rows)
            return Fail(kFailed, viewer.getErrorString().view());
        pairs = ReadPairs(*rows);
    }
    m_pairs = std::move(pairs);
    for (const std::size_t column : {kLow, kHigh})
        SetMark(static_cast<int>(column), calculated && field.fits ? std::string(kFitsMark) : "");
    m_base = calculated ? baseOf(field, low, high) : ListBase();
    if (calculated)
        ShowRecords(m_pairs.size());
    else
        ShowPlaceholder();
    return true;
} catch (const GenException& failure) {
    return Fail(kFailed, failure.getText().view());
}

std::vector<OutlierRows::Pair> OutlierRows::ReadPairs(ProfileCursor& rows) {
    std::vector<Pair> pairs;
    while (rows.next()) {
        const int position = rows.getColumnInt(layout::OutlierPosition);
        if (position < 0)
            continue;
        const auto at = static_cast<std::size_t>(position);
        if (at == pairs.size())
            pairs.emplace_back();
        const std::string side = rows.getColumnValue(layout::OutlierSideLetter).str();
        // Ignore a damaged position that skips rows.
        if (at < pairs.size() && (side == "L" || side == "H"))
            pairs[at][side == "L" ? kLow : kHigh] =
                Outlier{rows.getColumnValue(layout::OutlierValue), rows.getColumnInt(layout::OutlierFence)};
    }
    return pairs;
}

void OutlierRows::Clear() {
    m_pairs.clear();
    m_base = {};
    ShowRecords(0);
}

ListBase OutlierRows::GetBase() const {
    return m_base;
}

std::optional<KvbString> OutlierRows::GetValue(int column, std::int64_t row) const {
    if (IsPlaceholder())
        return std::nullopt;
    const auto& outlier = m_pairs.at(Record(row)).at(static_cast<std::size_t>(column));
    return outlier ? std::optional(outlier->value) : std::nullopt;
}

GridCell OutlierRows::CellOf(int column, std::size_t record) const {
    const auto& outlier = m_pairs.at(record).at(static_cast<std::size_t>(column));
    if (!outlier)
        return {};
    GridCell cell = valueCell(outlier->value);
    cell.icon = fenceIcon(outlier->fence);
    return cell;
}

} // namespace tavix
