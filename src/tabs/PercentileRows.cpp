#include "tabs/PercentileRows.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/CountText.h"
#include "report/DistributionShare.h"
#include "tabs/SubjectText.h"

#include <array>

namespace tavix {

namespace {

constexpr int kWidth = 180;
constexpr int kValueColumn = 1;
constexpr std::string_view kFailed = "Error occurred while retrieving percentiles:";

/// The number at the start of an interval such as "2.5 %".
std::string figureOf(std::string_view interval) {
    return std::string(interval.substr(0, interval.find_first_not_of("0123456789.")));
}

struct Rule {
    std::string_view name;
    std::string_view explanation;
};

/// As runs store them.
constexpr std::array<Rule, 2> kRules = {{
    {"linear interpolation (R type 7)",
     "With the n values in order and h = (n − 1) · p / 100, the percentile is the value at position ⌊h⌋, counted from "
     "0, plus the fraction of h times the difference to the next value."},
    {"nearest rank", "With the n values in order, the percentile is the value at position ⌈p · n / 100⌉, counted from "
                     "1; at least the first."},
}};

ListBase baseOf(const FieldRecord& field) {
    ListBase base;
    const std::int64_t values = patternTotal(field.metrics);
    base.text = "Percentiles of " + valuesThatCompare(field, countOf(values, "non-null value"));
    if (!field.quantileRule.empty())
        base.text += ", by " + field.quantileRule;
    for (const Rule& rule : kRules) {
        if (rule.name == field.quantileRule)
            base.toolTip = rule.explanation;
    }
    return base;
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
    SetMark(kValueColumn, count != 0 && field.fits ? std::string(kFitsMark) : "");
    m_base = count == 0 ? ListBase() : baseOf(field);
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
    m_base = {};
    ShowRecords(0);
}

ListBase PercentileRows::GetBase() const {
    return m_base;
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
