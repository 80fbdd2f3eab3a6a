#pragma once

namespace tavix {

/// What the report pane shows.
enum class ReportPaneKind { Empty, Table, Field };

/// The codes by which export and print know the tabs of the report pane.
enum class ItemCode {
    None = -1, ///< nothing to export or print
    StandardMetrics = 0,
    CustomMetrics = 1,
    BusinessRules = 2,
    Alerts = 3,
    Visualizations = 4,
    ColumnProfiling = 5,
    Frequency = 6,
    Patterns = 7,
    Percentiles = 8,
    Outliers = 9,
    FieldNotes = 10,
    KeyAnalysis = 12,
    TableNotes = 14,
};

} // namespace tavix
