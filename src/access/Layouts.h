#pragma once

#include "base/Metrics.h"

#include <span>
#include <string_view>

/// The columns of every repository cursor, by number: the enumerators are the arguments of getColumnValue and the other
/// getters. The tables in Layouts.cpp give each column its heading and the SQL of its value. docs/cursors.md lists
/// them.
namespace tavix::layout {

enum class Form {
    Plain,
    Date, ///< stored as milliseconds in UTC, read as a date of the library
};

struct Column {
    int index;
    std::string_view name; ///< the heading, as getColumnName gives it
    std::string_view sql;  ///< the SQL of the value; empty if the cursor does not read from a query
    Form form = Form::Plain;
};

struct Layout {
    std::string_view operation; ///< the PrViewer operation that returns it
    std::span<const Column> columns;
};

enum Reports {
    ReportId = 0,
    ReportName = 1,
    ReportDescription = 2,
    ReportFolderId = 3,
    ReportRunCount = 4,
    ReportLastRunId = 5,
    ReportLastRunDate = 6,
};
enum Report {
    ReportRowId = 0,
    ReportRowName = 1,
    ReportRowDescription = 2,
    ReportRowCreated = 3,
};
enum Jobs {
    JobRunId = 0,
    JobDate = 1,
    JobDescription = 2,
    JobTables = 3,
    JobRecords = 4,
    JobSeconds = 5,
};
enum DsnList {
    DsnId = 0,
    DsnName = 1,
    DsnKind = 2,
    DsnTables = 3,
};
/// TableKindLetter is that of a TableKind. TableFilter is the condition of a filtered table; TableAlternateFilter is
/// shown if that is empty.
enum TableList {
    TableKindLetter = 0,
    TableId = 1,
    TableName = 2,
    TableObjectName = 3,
    TableSchema = 4,
    TableCatalog = 5,
    TableBase = 6,
    TableFilter = 7,
    TableQuery = 8,
    TableAlternateFilter = 9,
    TableTotalRecords = 10,
    TableProcessedRecords = 11,
    TableFields = 12,
    TableDamagedRecords = 13,
    TableIsSample = 14,
};
/// Whether the metrics of a run's table are those of a sample of its rows, or of its base table's: an SQL condition on
/// run_table rt and profiled_table t. Only the base of a filtered table shows whether it was sampled.
inline constexpr std::string_view kIsSample =
    "CASE WHEN t.kind <> 'D' THEN rt.processed_records < rt.total_records ELSE EXISTS (SELECT 1 FROM profiled_table bt "
    "CROSS JOIN run_table b ON b.run = rt.run AND b.table_id = bt.id WHERE bt.data_source = t.data_source AND "
    "bt.name = t.name AND bt.catalog = t.catalog AND bt.schema = t.schema AND bt.kind <> 'D' AND b.query = rt.query "
    "AND "
    "b.processed_records < b.total_records) END";

/// The tables of one run. RunTableName is the name as shown.
enum TablesOfRun {
    RunTableId = 0,
    RunTableName = 1,
    RunTableSourceId = 2,
    RunTableKindLetter = 3,
    RunTableTotalRecords = 4,
    RunTableProcessedRecords = 5,
    RunTableDamagedRecords = 6,
    RunTableFields = 7,
};
/// The fields of all tables of one run.
enum FieldsOfRun {
    RunFieldId = 0,
    RunFieldName = 1,
    RunFieldTableId = 2,
    RunFieldNulls = 3,
    RunFieldNullPercent = 4,
};

/// Columns 0 to 2 of all four field lists.
enum FieldListHead {
    FieldId = 0,
    FieldName = 1,
    FieldTypeCode = 2,
};
/// The first metric's column; the others follow by id, 0 to 23.
inline constexpr int kFieldListMetrics = 3;
inline constexpr int kFieldListPkrMetrics = 5;
inline constexpr int kCollectionFieldListMetrics = 8;
inline constexpr int kCollectionFieldListPkrMetrics = 10;
/// Counts of stored key and redundancy analyses.
enum FieldListPkr {
    PkrKeyAnalyses = 3,
    PkrRedundancies = 4,
};
/// Where a collection's field comes from, in both collection lists.
enum CollectionFieldSource {
    SourceDsn = 3,
    SourceCatalog = 4,
    SourceSchema = 5,
    SourceObject = 6,
    SourceTable = 7,
};
enum CollectionFieldListPkr {
    CollectionPkrKeyAnalyses = 8,
    CollectionPkrRedundancies = 9,
};
/// The columns after the metrics in all four field lists, counted from the first of them: the numbers of rows in the
/// value and pattern distributions, the table's id, and the rule for quantiles.
enum FieldListTail {
    TailFreqCount = 0,
    TailPatternCount = 1,
    TailTableId = 2,
    TailQuantileRule = 3,
};

[[nodiscard]] constexpr int tailColumn(int firstMetric, FieldListTail tail) {
    return firstMetric + static_cast<int>(kMetricCount) + tail;
}

enum TextFileFields {
    TextFieldOrdinal = 0,
    TextFieldName = 1,
};
enum Collections {
    CollectionId = 0,
    CollectionName = 1,
    CollectionDescription = 2,
    CollectionFields = 3,
};
/// The collections that contain the fields of one table, one row for each pair.
enum CollectionsForTable {
    TableCollectionFieldId = 0,
    TableCollectionId = 1,
    TableCollectionName = 2,
};

enum FreqDist {
    FreqValue = 0,
    FreqCount = 1,
};
enum PatternDist {
    PatternRank = 0,
    PatternText = 1,
    PatternCountColumn = 2,
};
enum Percentiles {
    PercentileInterval = 0,
    PercentileValue = 1,
};
/// OutlierSideLetter is L or H; OutlierFence 0 inside, 1 beyond 1.5, 2 beyond 3.0 times the interquartile range.
enum Outliers {
    OutlierSideLetter = 0,
    OutlierPosition = 1,
    OutlierValue = 2,
    OutlierCount = 3,
    OutlierFence = 4,
};

/// A row for each bin of a field's histogram. The kind is N numbers, D dates or L lengths of texts in code points; the
/// unit of the bins N numbers, S seconds, W weeks from Monday or M months. A bin holds the values from Low up to but
/// without High; borders of dates are days since 1899-12-30 00:00 UTC.
enum TypeBreakdowns {
    BreakdownValues = 0, ///< distinct, neither null, empty nor blank
    BreakdownRows = 1,
    BreakdownReading = 2, ///< forms::Reading::text(); empty if no type fits
    BreakdownFitValues = 3,
    BreakdownFitRows = 4,
    BreakdownAmbiguity = 5,
    BreakdownHasFigures = 6, ///< 1: the metrics of a text field are those of the values that fit
};
enum TypeForms {
    FormWord = 0,
    FormValues = 1,
    FormRows = 2,
    FormExample = 3,
};
enum FitReadings {
    FitFieldId = 0,
    FitReading = 1,
    FitFitRows = 2,
    FitRows = 3,
    FitHasFigures = 4,
};
enum Findings {
    FindingTableId = 0,
    FindingTableName = 1, ///< the display name
    FindingFieldId = 2,   ///< 0: about the table
    FindingFieldName = 3,
    FindingCode = 4,
    FindingLikelihood = 5, ///< 1 possible, 2 likely, 3 definite
    FindingValues = 6,
    FindingRows = 7,
    FindingDetail = 8,
    FindingCondition = 9,  ///< over `Value`; empty without values
    FindingDismissal = 10, ///< the reason; null unless dismissed
    FindingDismissedBy = 11,
    FindingDismissed = 12, ///< date
};
enum HistogramBins {
    HistogramKindLetter = 0,
    HistogramUnitLetter = 1,
    HistogramLow = 2,
    HistogramHigh = 3,
    HistogramCount = 4,
};
/// A row for each stored piece of a value distribution, in its order: the rank of its first value, from 1, how many
/// values it has, and the sum of their counts.
enum FreqDistRanks {
    RankFirst = 0,
    RankValues = 1,
    RankSum = 2,
};

/// Followed by the 24 metrics.
enum FieldHistoryHead {
    HistoryRunId = 0,
    HistoryDate = 1,
    HistoryDescription = 2,
};
inline constexpr int kFieldHistoryMetrics = 3;
/// A metric of the fields of a table in several runs.
enum TableHistory {
    TableHistoryRun = 0,
    TableHistoryDate = 1,
    TableHistoryField = 2,
    TableHistoryValue = 3,
};
/// CustomMetricFigure is count, sum, average, min, max or metric; CustomMetricKind is rows or metrics, the kind of its
/// inputs. CustomMetricInputs has the names of the fields, joined by commas.
enum CustomMetrics {
    CustomMetricId = 0,
    CustomMetricName = 1,
    CustomMetricKey = 2,
    CustomMetricFigure = 3,
    CustomMetricOutputName = 4,
    CustomMetricOutputValue = 5,
    CustomMetricExpression = 6,
    CustomMetricInputs = 7,
    CustomMetricUsedRows = 8,
    CustomMetricErrorRows = 9,
    CustomMetricTableId = 10,
    CustomMetricKind = 11,
};
/// MetricInputMetric is the number of the field's metric; null if the input is the field's rows.
enum CustomMetricInputFields {
    MetricInputFieldId = 0,
    MetricInputFieldName = 1,
    MetricInputMetric = 2,
};
/// Columns 0 to 2 are those of every history.
enum CustomMetricHistory {
    MetricHistoryOutputName = 3,
    MetricHistoryOutputValue = 4,
    MetricHistoryExpression = 5,
    MetricHistoryUsedRows = 6,
    MetricHistoryErrorRows = 7,
};
enum BusinessRules {
    RuleId = 0,
    RuleKey = 1,
    RuleName = 2,
    RuleCondition = 3,
    RuleFailedRows = 4,
    RuleCheckedRows = 5,
    RuleInputs = 6,
    RuleErrorRows = 7,
    RuleLoggedRows = 8,
    RuleTableId = 9,
};
enum BusinessRuleHistory {
    RuleHistoryCondition = 3,
    RuleHistoryFailedRows = 4,
    RuleHistoryCheckedRows = 5,
    RuleHistoryErrorRows = 6,
};
/// The fields of the row log follow, from RuleRowFirstField on. RuleRowPosition is the row's index among the rows that
/// the run has kept.
enum BusinessRuleRowLog {
    RuleRowNumber = 0,
    RuleRowRuleId = 1,
    RuleRowPosition = 2,
    RuleRowFirstField = 3,
};
/// LogLevelCode is 0 information, 1 warning, 2 error.
enum ExecutionLog {
    LogDate = 0,
    LogLevelCode = 1,
    LogTable = 2,
    LogText = 3,
    LogTableId = 4,
};

enum Alerts {
    AlertId = 0,
    AlertDsn = 1,
    AlertCatalog = 2,
    AlertSchema = 3,
    AlertTable = 4,
    AlertInput = 5,
    AlertObject = 6,
    AlertDescription = 7,
    AlertMetric = 8,
    AlertReserved = 9,
    AlertKindLetter = 10,
    AlertTypeCode = 11,
    AlertKey = 12,
    AlertTableId = 13,
    AlertFieldId = 14,   ///< null for custom metrics and rules
    AlertWatchedId = 15, ///< of the custom metric or rule; null for standard metrics
    AlertReportId = 16,  ///< the job whose runs it watches; null where an alert of an older version does not say
    AlertIsOfUser = 17,  ///< 1: made by a user, 0: defined by the job
    AlertAuthor = 18,    ///< of a user's alert
    AlertCreated = 19,   ///< date; null for an alert of the job
};
enum AlertProperties {
    AlertPropertyName = 0,
    AlertPropertyValue = 1,
};
enum AllAlertProperties {
    AllPropertiesAlert = 0,
    AllPropertiesName = 1,
    AllPropertiesValue = 2,
};
enum AlertMutes {
    MutedAlert = 0,
    MuteReason = 1,
    MuteAuthor = 2,
    MuteDate = 3,
    MuteFirstRun = 4, ///< the run that was shown: earlier runs are not muted
    MuteRuns = 5,     ///< how many runs from that one on; null: no such end
    MuteUntil = 6,    ///< runs that start before this date; null: no such end
    MuteLastRun = 7,  ///< the last of those runs, by both ends; null while none is known that ends it
};
enum AlertFigures {
    FigureAlert = 0, ///< -1 for a definition that is not stored
    FigureRun = 1,
    FigureDate = 2,
    FigureWeekday = 3, ///< of the run's start by UTC, 1 Monday to 7 Sunday
    FigureValue = 4,   ///< null or a text where the run has no such number
    FigureRows = 5,    ///< of a rule: the rows that it was checked for, the base of a percentage
};
enum AlertChanges {
    AlertChangeDate = 0,
    AlertChangeAuthor = 1, ///< the user, or empty: a run of the job
    AlertChangeBefore = 2, ///< the condition in words and the level
    AlertChangeAfter = 3,
};
enum AlertNotes {
    AlertNoteId = 0,
    AlertNoteDate = 1,
    AlertNoteUser = 2,
    AlertNoteText = 3,
};

enum Notes {
    NoteId = 0,
    NoteDate = 1,
    NoteCategory = 2,
    NoteUser = 3,
    NoteText = 4,
    NoteCategoryId = 5,
};
enum NoteCategories {
    CategoryId = 0,
    CategoryName = 1,
};
enum Charts {
    ChartId = 0,
    ChartName = 1,
    ChartDescription = 2,
};
enum ChartProperties {
    ChartPropertyName = 0,
    ChartPropertyPosition = 1,
    ChartPropertyValue = 2,
};

enum KeyAnalysis {
    KeyOtherFieldId = 0,
    KeyFieldName = 1,
    KeyDsn = 2,
    KeyCatalog = 3,
    KeySchema = 4,
    KeyTable = 5,
    KeyMatchPercent = 6,
};
enum KeyAnalysisOutliers {
    KeyOutlierValue = 0,
    KeyOutlierCount = 1,
};

enum RdaCfgs {
    RdaId = 0,
    RdaName = 1,
    RdaDescription = 2,
    RdaFields = 3,
};
enum RdaCfgFields {
    RdaFieldId = 0,
    RdaFieldName = 1,
    RdaFieldDsn = 2,
    RdaFieldCatalog = 3,
    RdaFieldSchema = 4,
    RdaFieldTable = 5,
};
enum Tasks {
    TaskId = 0,
    TaskKind = 1,
    TaskFieldId = 2,
    TaskDefinition = 3,
};

/// Every layout, in the order of the documentation.
[[nodiscard]] std::span<const Layout> all();
/// The layout of this operation, which must exist.
[[nodiscard]] const Layout& of(std::string_view operation);

} // namespace tavix::layout
