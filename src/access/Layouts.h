#pragma once

#include "base/Metrics.h"

#include <span>
#include <string_view>

/// The columns of every repository cursor, by number. The enumerators are what readers pass to getColumnValue and its
/// kin; the tables in Layouts.cpp give each column its heading and the expression that queries it, in the same order.
/// docs/cursors.md lists them for people.
namespace tavix::layout {

enum class Form {
    Plain,
    Date, ///< stored as milliseconds in UTC, read as a date of the library
};

struct Column {
    int index;
    std::string_view name; ///< the heading, as getColumnName gives it
    std::string_view sql;  ///< what the query selects; empty where the cursor is not read from a query
    Form form = Form::Plain;
};

struct Layout {
    std::string_view operation; ///< the PrViewer operation that yields it
    std::span<const Column> columns;
};

enum Reports {
    ReportId,
    ReportName,
    ReportDescription,
    ReportFolderId,
    ReportRunCount,
    ReportLastRunId,
    ReportLastRunDate
};
enum Report { ReportRowId, ReportRowName, ReportRowDescription, ReportRowCreated };
enum Jobs { JobRunId, JobDate, JobDescription, JobTables, JobRecords, JobSeconds };
enum DsnList { DsnId, DsnName, DsnKind, DsnTables };
/// TableKindLetter is that of a TableKind. TableFilter is the condition of a filtered table, TableAlternateFilter the
/// text to show when that is empty.
enum TableList {
    TableKindLetter,
    TableId,
    TableName,
    TableObjectName,
    TableSchema,
    TableCatalog,
    TableBase,
    TableFilter,
    TableQuery,
    TableAlternateFilter,
    TableTotalRecords,
    TableProcessedRecords,
    TableFields,
    TableDamagedRecords,
    TableIsSample
};
/// Whether the metrics of a run's table are those of a sample of its rows, or of its base table's: an SQL condition on
/// run_table rt and profiled_table t. Only the base of a filtered table shows whether it was sampled.
inline constexpr std::string_view kIsSample =
    "CASE WHEN t.kind <> 'D' THEN rt.processed_records < rt.total_records ELSE EXISTS (SELECT 1 FROM profiled_table bt "
    "CROSS JOIN run_table b ON b.run = rt.run AND b.table_id = bt.id WHERE bt.data_source = t.data_source AND "
    "bt.name = t.name AND bt.catalog = t.catalog AND bt.schema = t.schema AND bt.kind <> 'D' AND b.query = rt.query "
    "AND "
    "b.processed_records < b.total_records) END";

/// Columns 0 to 2 of all four field lists.
enum FieldListHead { FieldId, FieldName, FieldTypeCode };
/// Where the metrics with ids 0 to 23 begin.
inline constexpr int kFieldListMetrics = 3;
inline constexpr int kFieldListPkrMetrics = 5;
inline constexpr int kCollectionFieldListMetrics = 8;
inline constexpr int kCollectionFieldListPkrMetrics = 10;
/// Counts of stored key and redundancy analyses.
enum FieldListPkr { PkrKeyAnalyses = 3, PkrRedundancies = 4 };
/// Where a collection's field comes from, in both collection lists.
enum CollectionFieldSource { SourceDsn = 3, SourceCatalog, SourceSchema, SourceObject, SourceTable };
enum CollectionFieldListPkr { CollectionPkrKeyAnalyses = 8, CollectionPkrRedundancies = 9 };
/// What follows the metrics, counted from the column after the last metric, in all four field lists: the number of
/// rows of the value and of the pattern distribution, the ids of the table, and the rule of the quantiles.
enum FieldListTail { TailFreqCount, TailPatternCount, TailTableId, TailQuantileRule };

[[nodiscard]] constexpr int tailColumn(int firstMetric, FieldListTail tail) {
    return firstMetric + static_cast<int>(kMetricCount) + tail;
}

enum TextFileFields { TextFieldOrdinal, TextFieldName };
enum Collections { CollectionId, CollectionName, CollectionDescription, CollectionFields };
/// The collections that hold the fields of one table, one row for each pair.
enum CollectionsForTable { TableCollectionFieldId, TableCollectionId, TableCollectionName };

enum FreqDist { FreqValue, FreqCount };
enum PatternDist { PatternRank, PatternText, PatternCountColumn };
enum Percentiles { PercentileInterval, PercentileValue };
/// OutlierSideLetter is L or H; OutlierFence 0 inside, 1 beyond 1.5, 2 beyond 3.0 times the quartiles' distance.
enum Outliers { OutlierSideLetter, OutlierPosition, OutlierValue, OutlierCount, OutlierFence };

/// Then the 24 metrics.
enum FieldHistoryHead { HistoryRunId, HistoryDate, HistoryDescription };
inline constexpr int kFieldHistoryMetrics = 3;
/// CustomMetricFigure is count, sum, average, min, max or metric; CustomMetricKind rows or metrics: what it is computed
/// from. Inputs are the names of the fields, joined by commas.
enum CustomMetrics {
    CustomMetricId,
    CustomMetricName,
    CustomMetricKey,
    CustomMetricFigure,
    CustomMetricOutputName,
    CustomMetricOutputValue,
    CustomMetricExpression,
    CustomMetricInputs,
    CustomMetricUsedRows,
    CustomMetricErrorRows,
    CustomMetricTableId,
    CustomMetricKind
};
/// MetricInputMetric is the number of the field's metric that is read; null when its rows are.
enum CustomMetricInputFields { MetricInputFieldId, MetricInputFieldName, MetricInputMetric };
/// Columns 0 to 2 are those of every history.
enum CustomMetricHistory {
    MetricHistoryOutputName = HistoryDescription + 1,
    MetricHistoryOutputValue,
    MetricHistoryExpression,
    MetricHistoryUsedRows,
    MetricHistoryErrorRows
};
enum BusinessRules {
    RuleId,
    RuleKey,
    RuleName,
    RuleCondition,
    RuleFailedRows,
    RuleCheckedRows,
    RuleInputs,
    RuleErrorRows,
    RuleLoggedRows,
    RuleTableId
};
enum BusinessRuleHistory {
    RuleHistoryCondition = HistoryDescription + 1,
    RuleHistoryFailedRows,
    RuleHistoryCheckedRows,
    RuleHistoryErrorRows
};
/// Then the fields of the row log, from RuleRowFirstField on. The position is the row's index among those that the run
/// has kept.
enum BusinessRuleRowLog { RuleRowNumber, RuleRowRuleId, RuleRowPosition, RuleRowFirstField };
/// LogLevelCode is 0 information, 1 warning, 2 error.
enum ExecutionLog { LogDate, LogLevelCode, LogTable, LogText };

enum Alerts {
    AlertId,
    AlertDsn,
    AlertCatalog,
    AlertSchema,
    AlertTable,
    AlertInput,
    AlertObject,
    AlertDescription,
    AlertMetric,
    AlertReserved,
    AlertKindLetter,
    AlertTypeCode,
    AlertKey,
    AlertTableId,
    AlertFieldId,   ///< null for custom metrics and rules
    AlertWatchedId, ///< of the custom metric or rule; null for standard metrics
    AlertReportId,  ///< null for alerts that no job states
};
enum AlertProperties { AlertPropertyName, AlertPropertyValue };

enum Notes { NoteId, NoteDate, NoteCategory, NoteUser, NoteText, NoteCategoryId };
enum NoteCategories { CategoryId, CategoryName };
enum Charts { ChartId, ChartName, ChartDescription };
enum ChartProperties { ChartPropertyName, ChartPropertyPosition, ChartPropertyValue };

enum KeyAnalysis { KeyOtherFieldId, KeyFieldName, KeyDsn, KeyCatalog, KeySchema, KeyTable, KeyMatchPercent };
enum KeyAnalysisOutliers { KeyOutlierValue, KeyOutlierCount };

enum RdaCfgs { RdaId, RdaName, RdaDescription, RdaFields };
enum RdaCfgFields { RdaFieldId, RdaFieldName, RdaFieldDsn, RdaFieldCatalog, RdaFieldSchema, RdaFieldTable };
enum Tasks { TaskId, TaskKind, TaskFieldId, TaskDefinition };

/// Every layout, in the order of the documentation.
[[nodiscard]] std::span<const Layout> all();
/// The one of this operation, which must be listed.
[[nodiscard]] const Layout& of(std::string_view operation);

} // namespace tavix::layout
