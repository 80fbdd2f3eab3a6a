#pragma once

#include "doc/CTavixDoc.h"
#include "grid/CUGDataSource.h"
#include "report/AlertMarks.h"
#include "report/FitFigures.h"
#include "report/MetricHistory.h"
#include "report/ReportSelection.h"

#include <locale>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

/// The rows of the standard metrics tab: one row per field of a table or collection, one column per shown metric. Until
/// they are sorted, the rows are in the order of the field list.
class StdMetRows final : public CUGDataSource {
  public:
    /// Reads the rows of the selected table or collection, with a column for each shown metric of `metrics`; any other
    /// selection gives no rows. `collections` holds those of the table's fields. If any metric is shown, columns with
    /// pictures follow: how many rows are filled, and for a table with several runs the line of `trendMetric`; -1 for
    /// no line. False when the repository fails: GetErrorText() then says why, and there are no rows.
    bool Fill(PrViewer& viewer, const ReportSelection& selection, std::span<const MetricDisplay> metrics,
              const CollectionsByField& collections, int trendMetric = -1);
    /// The alerts of the table that is filled next. They mark the metrics that they watch; a collection has no marks.
    void SetAlerts(AlertMarks alerts) { m_alerts = std::move(alerts); }
    /// Dates in tooltips are written in this locale.
    void SetLocale(const std::locale& locale) { m_locale = locale; }
    /// Removes all rows and columns.
    void Clear();
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }

    [[nodiscard]] int GetFieldId(std::int64_t row) const;
    [[nodiscard]] const std::string& GetFieldName(std::int64_t row) const;
    /// Whether the column shows the line of a metric.
    [[nodiscard]] bool IsTrend(int column) const { return m_trendColumn >= 0 && column == m_trendColumn; }
    /// The metric whose line is shown; -1 without a line.
    [[nodiscard]] int GetTrendMetric() const { return m_trendColumn >= 0 ? m_trendMetric : -1; }
    /// The row of that field; -1 when there is none.
    [[nodiscard]] std::int64_t FindField(int fieldId) const;
    /// The metric of a table's field that the cell shows and that an alert can watch, by its id; -1 for other cells.
    [[nodiscard]] int GetWatchable(int column) const;
    /// The alerts that mark the cell, the gravest first.
    [[nodiscard]] const std::vector<AlertState>& GetAlerts(int column, std::int64_t row) const;

    [[nodiscard]] int GetColumnCount() const override { return static_cast<int>(m_columns.size()); }
    [[nodiscard]] std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_rows.size()); }
    [[nodiscard]] GridColumn GetColumn(int column) const override;
    [[nodiscard]] GridCell GetCell(int column, std::int64_t row) const override;
    [[nodiscard]] std::string GetToolTip(int column, std::int64_t row) const override;
    [[nodiscard]] std::int64_t GetRowKey(std::int64_t row) const override { return GetFieldId(row); }
    bool Sort(int column, bool descending) override;

  private:
    struct Row {
        int fieldId = -1;
        std::string fieldName;
        std::optional<FitFigures> fits; ///< over which values figures are
        std::vector<GridCell> cells;
    };

    bool ReadFields(PrViewer& viewer, const ReportSelection& selection, const CollectionsByField& collections);
    [[nodiscard]] Row ReadRow(const ProfileCursor& cursor, const CollectionsByField& collections,
                              std::optional<FitFigures> fits) const;
    void MakeColumns(std::span<const MetricDisplay> metrics, bool isSample);
    void MakePictureColumns();
    void ReadHistory(PrViewer& viewer, int tableId);

    std::vector<GridColumn> m_columns;
    std::vector<Row> m_rows;
    std::vector<int> m_shown; ///< metric ids in the order of their columns
    AlertMarks m_alerts;
    bool m_isCollection = false;
    MetricHistory m_history;
    int m_trendMetric = -1;
    int m_trendColumn = -1;
    std::locale m_locale = std::locale::classic();
    std::string m_error;
};

} // namespace tavix
