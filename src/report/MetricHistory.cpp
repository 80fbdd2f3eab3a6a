#include "report/MetricHistory.h"

#include "access/Layouts.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/CheckedCursor.h"

#include <limits>

namespace tavix {

namespace {

constexpr double kNoFigure = std::numeric_limits<double>::quiet_NaN();

// A value of the data may be any text, and reads as 0 when it is not a number.
double figureAt(const ProfileCursor& cursor, bool isValueOfData) {
    if (cursor.isColumnNull(layout::TableHistoryValue))
        return kNoFigure;
    if (isValueOfData)
        return parseNumber(cursor.getColumnValue(layout::TableHistoryValue).view()).value_or(kNoFigure);
    return cursor.getColumnDouble(layout::TableHistoryValue);
}

} // namespace

const std::vector<double>& MetricHistory::Of(int fieldId) const {
    static const std::vector<double> kNone;
    const auto field = figures.find(fieldId);
    return field == figures.end() ? kNone : field->second;
}

MetricHistory readMetricHistory(PrViewer& viewer, int tableId, int metricId, int mostRuns) {
    const MetricInfo* const metric = findMetric(metricId);
    const bool isValueOfData = metric && metric->value == MetricValue::FieldValue;
    const ProfileCursorHandle rows = checked(viewer, viewer.getTableHistory(tableId, metricId, mostRuns));
    MetricHistory history;
    while (rows->next()) {
        const int run = rows->getColumnInt(layout::TableHistoryRun);
        if (history.runs.empty() || history.runs.back() != run) {
            history.runs.push_back(run);
            history.dates.push_back(rows->getColumnDouble(layout::TableHistoryDate));
        }
        std::vector<double>& figures = history.figures[rows->getColumnInt(layout::TableHistoryField)];
        figures.resize(history.runs.size(), kNoFigure);
        figures.back() = figureAt(*rows, isValueOfData);
    }
    for (auto& [field, figures] : history.figures)
        figures.resize(history.runs.size(), kNoFigure);
    return history;
}

} // namespace tavix
