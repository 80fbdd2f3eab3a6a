#pragma once

#include "grid/ListRows.h"
#include "report/AlertMarks.h"

#include <locale>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

class PrViewer;

/// Rows whose cells are made when they are read.
class CellRows : public ListRows {
  public:
    void Clear() override;

  protected:
    using Cells = std::vector<GridCell>;

    using ListRows::ListRows;
    void Show(std::vector<Cells> rows);

  private:
    [[nodiscard]] GridCell CellOf(int column, std::size_t record) const final;

    std::vector<Cells> m_rows;
};

/// The custom metrics of a table with their values in the current run.
class CustomMetricRows final : public CellRows {
  public:
    CustomMetricRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int tableId);
    [[nodiscard]] const std::string& GetKey(std::int64_t row) const { return m_metrics.at(Record(row)).key; }
    /// The row of that metric; -1 when there is none.
    [[nodiscard]] std::int64_t FindMetric(int metricId) const;
    [[nodiscard]] int GetMetric(std::int64_t row) const { return m_metrics.at(Record(row)).id; }
    /// The alerts of the table that is filled next.
    void SetAlerts(AlertMarks alerts) { m_alerts = std::move(alerts); }
    /// Those that watch the metric, the gravest first.
    [[nodiscard]] const std::vector<AlertState>& GetAlerts(std::int64_t row) const {
        return m_alerts.OfKey(GetKey(row));
    }
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  private:
    struct Metric {
        int id = -1;
        std::string key;
    };
    std::vector<Metric> m_metrics; ///< by record
    AlertMarks m_alerts;
};

/// The business rules of a table and how many rows violate them in the current run.
class BusinessRuleRows final : public CellRows {
  public:
    struct Rule {
        int id = -1;
        std::string key;
        std::int64_t failed = 0;
        std::int64_t logged = 0; ///< rows whose contents the run has kept
    };

    BusinessRuleRows();

    /// False when the repository fails: the rows are then unchanged, and GetErrorText() is the message.
    bool Fill(PrViewer& viewer, int tableId);
    [[nodiscard]] const Rule& GetRule(std::int64_t row) const { return m_rules.at(Record(row)); }
    /// The row of that rule; -1 when there is none.
    [[nodiscard]] std::int64_t FindRule(int ruleId) const;
    /// The alerts of the table that is filled next.
    void SetAlerts(AlertMarks alerts) { m_alerts = std::move(alerts); }
    /// Those that watch the rule, the gravest first.
    [[nodiscard]] const std::vector<AlertState>& GetAlerts(std::int64_t row) const {
        return m_alerts.OfKey(GetRule(row).key);
    }
    /// Whether the column shows the percentage of violating rows rather than a number.
    [[nodiscard]] static bool IsPercentage(int column);
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;

  private:
    std::vector<Rule> m_rules; ///< by record
    AlertMarks m_alerts;
};

/// The history of one custom metric over the runs of the report, latest first.
class CustomMetricHistoryRows final : public CellRows {
  public:
    /// Formats dates for this locale.
    explicit CustomMetricHistoryRows(const std::locale& locale);

    bool Fill(PrViewer& viewer, const std::string& key);

  private:
    std::locale m_locale;
};

/// The history of one rule over the runs of the report, latest first.
class BusinessRuleHistoryRows final : public CellRows {
  public:
    explicit BusinessRuleHistoryRows(const std::locale& locale);

    bool Fill(PrViewer& viewer, const std::string& key);

  private:
    std::locale m_locale;
};

/// The rows that violate a rule, up to the number that the run has kept: row number, key fields, input fields.
class RuleLogRows final : public CellRows {
  public:
    RuleLogRows() : CellRows(std::vector<GridColumn>()) {}

    bool Fill(PrViewer& viewer, int ruleId);
};

} // namespace tavix
