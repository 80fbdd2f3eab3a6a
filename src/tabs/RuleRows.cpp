#include "tabs/RuleRows.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/LibraryDate.h"
#include "base/NumberText.h"
#include "report/CountText.h"
#include "tabs/MetricText.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kMetricsFailed = "Error occurred while retrieving custom metrics:";
constexpr std::string_view kRulesFailed = "Error occurred while retrieving business rules:";
constexpr std::string_view kLogFailed = "Error occurred while retrieving the rows that violate the rule:";
constexpr std::string_view kNoMetrics = "The job of this report defines no custom metrics for this table.";
constexpr std::string_view kNoRules = "The job of this report defines no business rules for this table.";
constexpr int kMetricValue = 2; ///< the column of a custom metric's value
constexpr int kFailedRows = 1;
constexpr int kFailedShare = 2;
constexpr int kDateWidth = 190;
constexpr int kCountWidth = 110;

GridColumn countColumn(std::string_view heading) {
    return listColumn(heading, kCountWidth, CellAlignment::Right);
}

// A metric that could not be computed is unknown, not a value of the data.
GridCell figureCell(const KvbString& value) {
    GridCell cell = textCell(value.isNull() ? kUnknownMetric : value.view(), CellAlignment::Right);
    if (value.isNull()) {
        cell.state = CellState::Unknown;
        return cell;
    }
    // Whole numbers may be years or keys; only the digits of fractions are shortened.
    if (const auto number = parseNumber(value.view()); number && value.view().find('.') != std::string_view::npos) {
        if (std::string shown = formatReadable(*number); shown.size() < cell.text.size())
            cell.shown = std::move(shown);
    }
    return cell;
}

GridCell shareCell(std::int64_t failed, std::int64_t checked) {
    if (checked <= 0)
        return textCell({}, CellAlignment::Right);
    const double share = static_cast<double>(failed) / static_cast<double>(checked);
    GridCell cell = percentCell(share * 100, share);
    cell.shown = shareText(share * 100);
    return cell;
}

GridCell dateCell(const ProfileCursor& cursor, const std::locale& locale) {
    const double date = cursor.getColumnDouble(layout::HistoryDate);
    GridCell cell = textCell(formatDateTime(decompose(date), locale));
    cell.order = formatReal(date);
    return cell;
}

using ReadRow = std::function<std::vector<GridCell>(const ProfileCursor&)>;

// Nothing when the cursor could not be opened; throws as the cursor does.
std::optional<std::vector<std::vector<GridCell>>> readAll(const ProfileCursorHandle& cursor, const ReadRow& readRow) {
    if (!cursor)
        return std::nullopt;
    std::vector<std::vector<GridCell>> rows;
    while (cursor->next())
        rows.push_back(readRow(*cursor));
    return rows;
}

} // namespace

void CellRows::Clear() {
    Show({});
}

void CellRows::Show(std::vector<Cells> rows) {
    m_rows = std::move(rows);
    ShowRecords(m_rows.size());
}

GridCell CellRows::CellOf(int column, std::size_t record) const {
    return m_rows.at(record).at(static_cast<std::size_t>(column));
}

CustomMetricRows::CustomMetricRows()
    : CellRows({listColumn("Custom Metric", 180), listColumn("Output Name", 150),
                listColumn("Value", 130, CellAlignment::Right), listColumn("Figure", 80), listColumn("Expression", 300),
                listColumn("Input Fields", 180), countColumn("Rows Used"), countColumn("Rows in Error")},
               kNoMetrics) {}

bool CustomMetricRows::Fill(PrViewer& viewer, int tableId) try {
    using namespace layout;
    std::vector<Metric> metrics;
    auto rows = readAll(viewer.getCustomMetrics(tableId), [this, &metrics](const ProfileCursor& metric) {
        metrics.push_back({metric.getColumnInt(CustomMetricId), textAt(metric, CustomMetricKey)});
        GridCell value = figureCell(metric.getColumnValue(CustomMetricOutputValue));
        value.alert = markOf(m_alerts.OfKey(metrics.back().key));
        return Cells{textCell(textAt(metric, CustomMetricName)),
                     textCell(textAt(metric, CustomMetricOutputName)),
                     std::move(value),
                     textCell(textAt(metric, CustomMetricFigure)),
                     textCell(textAt(metric, CustomMetricExpression)),
                     textCell(textAt(metric, CustomMetricInputs)),
                     countCell(metric.getColumnInt64(CustomMetricUsedRows)),
                     countCell(metric.getColumnInt64(CustomMetricErrorRows))};
    });
    if (!rows)
        return Fail(kMetricsFailed, viewer.getErrorString().view());
    m_metrics = std::move(metrics);
    Show(std::move(*rows));
    return true;
} catch (const GenException& failure) {
    return Fail(kMetricsFailed, failure.getText().view());
}

std::string CustomMetricRows::GetToolTip(int column, std::int64_t row) const {
    return column == kMetricValue && !IsPlaceholder() ? alertLines(GetAlerts(row), userLocale()) : std::string();
}

std::int64_t CustomMetricRows::FindMetric(int metricId) const {
    for (std::int64_t row = 0; row < GetRowCount(); ++row) {
        if (m_metrics.at(Record(row)).id == metricId)
            return row;
    }
    return -1;
}

BusinessRuleRows::BusinessRuleRows()
    : CellRows({listColumn("Business Rule", 180), countColumn("Failed Rows"), countColumn("Percentage"),
                countColumn("Checked Rows"), countColumn("Rows in Error"), listColumn("Condition", 300),
                listColumn("Input Fields", 180)},
               kNoRules) {
    SetToolTip(kFailedShare, "Share of the rows that were checked");
}

bool BusinessRuleRows::Fill(PrViewer& viewer, int tableId) try {
    using namespace layout;
    std::vector<Rule> rules;
    auto rows = readAll(viewer.getBusinessRules(tableId), [this, &rules](const ProfileCursor& rule) {
        const std::int64_t failed = rule.getColumnInt64(RuleFailedRows);
        const std::int64_t checked = rule.getColumnInt64(RuleCheckedRows);
        rules.push_back(
            {rule.getColumnInt(RuleId), textAt(rule, RuleKey), failed, rule.getColumnInt64(RuleLoggedRows)});
        GridCell violations = countCell(failed);
        GridCell share = shareCell(failed, checked);
        violations.alert = markOf(m_alerts.OfRule(rules.back().key, false));
        share.alert = markOf(m_alerts.OfRule(rules.back().key, true));
        return Cells{textCell(textAt(rule, RuleName)),
                     std::move(violations),
                     std::move(share),
                     countCell(checked),
                     countCell(rule.getColumnInt64(RuleErrorRows)),
                     textCell(textAt(rule, RuleCondition)),
                     textCell(textAt(rule, RuleInputs))};
    });
    if (!rows)
        return Fail(kRulesFailed, viewer.getErrorString().view());
    m_rules = std::move(rules);
    Show(std::move(*rows));
    return true;
} catch (const GenException& failure) {
    return Fail(kRulesFailed, failure.getText().view());
}

bool BusinessRuleRows::IsPercentage(int column) {
    return column == kFailedShare;
}

std::string BusinessRuleRows::GetToolTip(int column, std::int64_t row) const {
    if ((column != kFailedRows && column != kFailedShare) || IsPlaceholder())
        return {};
    return alertLines(m_alerts.OfRule(GetRule(row).key, IsPercentage(column)), userLocale());
}

std::int64_t BusinessRuleRows::FindRule(int ruleId) const {
    for (std::int64_t row = 0; row < GetRowCount(); ++row) {
        if (m_rules.at(Record(row)).id == ruleId)
            return row;
    }
    return -1;
}

CustomMetricHistoryRows::CustomMetricHistoryRows(const std::locale& locale)
    : CellRows({listColumn("Run", kDateWidth), listColumn("Description", 180),
                listColumn("Value", 130, CellAlignment::Right), countColumn("Rows Used"), countColumn("Rows in Error"),
                listColumn("Expression", 300)}),
      m_locale(locale) {}

bool CustomMetricHistoryRows::Fill(PrViewer& viewer, const std::string& key) try {
    using namespace layout;
    auto rows = readAll(viewer.getCustomMetricHistory(key), [this](const ProfileCursor& run) {
        return Cells{dateCell(run, m_locale),
                     textCell(textAt(run, HistoryDescription)),
                     figureCell(run.getColumnValue(MetricHistoryOutputValue)),
                     countCell(run.getColumnInt64(MetricHistoryUsedRows)),
                     countCell(run.getColumnInt64(MetricHistoryErrorRows)),
                     textCell(textAt(run, MetricHistoryExpression))};
    });
    if (!rows)
        return Fail(kMetricsFailed, viewer.getErrorString().view());
    std::reverse(rows->begin(), rows->end());
    Show(std::move(*rows));
    return true;
} catch (const GenException& failure) {
    return Fail(kMetricsFailed, failure.getText().view());
}

BusinessRuleHistoryRows::BusinessRuleHistoryRows(const std::locale& locale)
    : CellRows({listColumn("Run", kDateWidth), listColumn("Description", 180), countColumn("Failed Rows"),
                countColumn("Percentage"), countColumn("Checked Rows"), listColumn("Condition", 300)}),
      m_locale(locale) {}

bool BusinessRuleHistoryRows::Fill(PrViewer& viewer, const std::string& key) try {
    using namespace layout;
    auto rows = readAll(viewer.getBusinessRuleHistory(key), [this](const ProfileCursor& run) {
        const std::int64_t failed = run.getColumnInt64(RuleHistoryFailedRows);
        const std::int64_t checked = run.getColumnInt64(RuleHistoryCheckedRows);
        return Cells{dateCell(run, m_locale), textCell(textAt(run, HistoryDescription)),
                     countCell(failed),       shareCell(failed, checked),
                     countCell(checked),      textCell(textAt(run, RuleHistoryCondition))};
    });
    if (!rows)
        return Fail(kRulesFailed, viewer.getErrorString().view());
    std::reverse(rows->begin(), rows->end());
    Show(std::move(*rows));
    return true;
} catch (const GenException& failure) {
    return Fail(kRulesFailed, failure.getText().view());
}

bool RuleLogRows::Fill(PrViewer& viewer, int ruleId) try {
    const ProfileCursorHandle cursor = viewer.getBusinessRuleRowLog(ruleId, 0, true);
    if (!cursor)
        return Fail(kLogFailed, viewer.getErrorString().view());
    std::vector<GridColumn> columns = {countColumn(cursor->getColumnName(layout::RuleRowNumber).view())};
    for (int column = layout::RuleRowFirstField; column < cursor->getColumnCount(); ++column)
        columns.push_back(listColumn(cursor->getColumnName(column).view(), 150));
    auto rows = readAll(cursor, [](const ProfileCursor& row) {
        Cells cells = {countCell(row.getColumnInt64(layout::RuleRowNumber))};
        for (int column = layout::RuleRowFirstField; column < row.getColumnCount(); ++column)
            cells.push_back(valueCell(row.getColumnValue(column)));
        return cells;
    });
    SetColumns(std::move(columns));
    Show(std::move(*rows));
    return true;
} catch (const GenException& failure) {
    return Fail(kLogFailed, failure.getText().view());
}

} // namespace tavix
