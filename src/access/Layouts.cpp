#include "access/Layouts.h"

#include <algorithm>
#include <array>
#include <deque>
#include <string>
#include <vector>

namespace tavix::layout {

namespace {

// The table aliases in the expressions: j job, r run, rt run_table, t profiled_table, d data_source, rf run_field, f
// field, c collection, m an entry of a collection or of a redundancy, n note, g note_category, h chart, p property,
// percentile or outlier, l execution_log, a alert, m its mute, k key_analysis, x redundancy, w task, cm custom_metric,
// b business_rule, v the row of one of these in a run, cv and br such rows that an alert watches, i an input of it, b
// what a run found out about a field, x its dismissal.

constexpr std::array kReports{
    Column{ReportId, "Id", "j.id"},
    Column{ReportName, "Name", "j.name"},
    Column{ReportDescription, "Description", "j.description"},
    Column{ReportFolderId, "Folder Id", "COALESCE(j.folder, -1)"},
    Column{ReportRunCount, "Runs", "(SELECT COUNT(*) FROM run WHERE job = j.id)"},
    Column{ReportLastRunId, "Last Run Id", "(SELECT MAX(id) FROM run WHERE job = j.id)"},
    Column{ReportLastRunDate, "Last Run", "(SELECT started FROM run WHERE job = j.id ORDER BY id DESC LIMIT 1)",
           Form::Date},
};
constexpr std::array kReport{
    Column{ReportRowId, "Id", "j.id"},
    Column{ReportRowName, "Name", "j.name"},
    Column{ReportRowDescription, "Description", "j.description"},
    Column{ReportRowCreated, "Created", "j.created", Form::Date},
};
constexpr std::array kJobs{
    Column{JobRunId, "Run Id", "r.id"},
    Column{JobDate, "Date", "r.started", Form::Date},
    Column{JobDescription, "Description", "r.description"},
    Column{JobTables, "Tables", "r.tables"},
    Column{JobRecords, "Records", "r.records"},
    Column{JobSeconds, "Seconds", "(r.finished - r.started) / 1000.0"},
};
constexpr std::array kDsnList{
    Column{DsnId, "Id", "d.id"},
    Column{DsnName, "Name", "d.name"},
    Column{DsnKind, "Kind", "d.kind"},
    Column{DsnTables, "Tables", "COUNT(*)"},
};
constexpr std::array kTableList{
    Column{TableKindLetter, "Kind", "t.kind"},
    Column{TableId, "Id", "t.id"},
    Column{TableName, "Table Name", "t.name"},
    Column{TableObjectName, "Object Name", "t.object_name"},
    Column{TableSchema, "Schema", "t.schema"},
    Column{TableCatalog, "Catalog", "t.catalog"},
    Column{TableBase, "Base", "CASE WHEN t.kind <> 'D' THEN '' WHEN t.name <> '' THEN t.name ELSE 'SQL query' END"},
    Column{TableFilter, "Filter", "rt.filter"},
    Column{TableQuery, "Query", "rt.query"},
    Column{TableAlternateFilter, "Alternate Filter", "rt.alternate_filter"},
    Column{TableTotalRecords, "Total Records", "rt.total_records"},
    Column{TableProcessedRecords, "Processed Records", "rt.processed_records"},
    Column{TableFields, "Fields", "rt.fields"},
    Column{TableDamagedRecords, "Damaged Records", "rt.damaged_records"},
    Column{TableIsSample, "Sample", kIsSample},
};

constexpr std::array kTablesOfRun{
    Column{RunTableId, "Id", "t.id"},
    Column{RunTableName, "Name", "CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END"},
    Column{RunTableSourceId, "Data Source Id", "t.data_source"},
    Column{RunTableKindLetter, "Kind", "t.kind"},
    Column{RunTableTotalRecords, "Total Records", "rt.total_records"},
    Column{RunTableProcessedRecords, "Processed Records", "rt.processed_records"},
    Column{RunTableDamagedRecords, "Damaged Records", "rt.damaged_records"},
    Column{RunTableFields, "Fields", "rt.fields"},
};
constexpr std::array kFieldsOfRun{
    Column{RunFieldId, "Field Id", "f.id"},
    Column{RunFieldName, "Field Name", "f.name"},
    Column{RunFieldTableId, "Table Id", "rf.table_id"},
    Column{RunFieldNulls, "Null Count", "rf.null_count"},
    Column{RunFieldNullPercent, "Percent Null", "rf.percent_null"},
};

constexpr std::array kFieldHead{
    Column{FieldId, "Field Id", "f.id"},
    Column{FieldName, "Field Name", "f.name"},
    Column{FieldTypeCode, "Type", "rf.type_code"},
};
constexpr std::array kFieldSource{
    Column{SourceDsn, "Data Source", "d.name"},  Column{SourceCatalog, "Catalog", "t.catalog"},
    Column{SourceSchema, "Schema", "t.schema"},  Column{SourceObject, "Object Name", "t.object_name"},
    Column{SourceTable, "Table Name", "t.name"},
};
constexpr std::array kAnalysisCounts{
    Column{PkrKeyAnalyses, "Key Analyses",
           "(SELECT COUNT(*) FROM key_analysis k WHERE k.run = rf.run AND k.field = rf.field)"},
    Column{PkrRedundancies, "Redundant Data Analyses",
           "(SELECT COUNT(*) FROM redundancy_field m2 WHERE m2.field = f.id)"},
};
constexpr std::array kFieldTail{
    Column{TailFreqCount, "Distinct Rows", "COALESCE(rf.value_rows, 0)"},
    Column{TailPatternCount, "Pattern Rows", "COALESCE(rf.pattern_rows, 0)"},
    Column{TailTableId, "Table Id", "f.table_id"},
    Column{TailQuantileRule, "Quantile Rule", "rf.quantile_rule"},
};

constexpr std::array kTextFileFields{
    Column{TextFieldOrdinal, "Ordinal", "rf.position"},
    Column{TextFieldName, "Field Name", "f.name"},
};
constexpr std::array kCollections{
    Column{CollectionId, "Id", "c.id"},
    Column{CollectionName, "Name", "c.name"},
    Column{CollectionDescription, "Description", "c.description"},
    Column{CollectionFields, "Fields", "(SELECT COUNT(*) FROM collection_field WHERE collection = c.id)"},
};
constexpr std::array kCollectionsForTable{
    Column{TableCollectionFieldId, "Field Id", "m.field"},
    Column{TableCollectionId, "Collection Id", "c.id"},
    Column{TableCollectionName, "Collection", "c.name"},
};
constexpr std::array kFreqDist{
    Column{FreqValue, "Value", ""},
    Column{FreqCount, "Count", ""},
};
constexpr std::array kPatternDist{
    Column{PatternRank, "Rank", ""},
    Column{PatternText, "Pattern", ""},
    Column{PatternCountColumn, "Count", ""},
};
constexpr std::array kPercentiles{
    Column{PercentileInterval, "Interval", "p.interval"},
    Column{PercentileValue, "Value", "p.value"},
};
constexpr std::array kHistogram{
    Column{HistogramKindLetter, "Kind", ""}, Column{HistogramUnitLetter, "Unit", ""}, Column{HistogramLow, "Low", ""},
    Column{HistogramHigh, "High", ""},       Column{HistogramCount, "Count", ""},
};
constexpr std::array kRanks{
    Column{RankFirst, "First Rank", "b.first_row + 1"},
    Column{RankValues, "Values", "b.rows"},
    Column{RankSum, "Sum", "b.sum"},
};
constexpr std::array kOutliers{
    Column{OutlierSideLetter, "Side", "p.side"}, Column{OutlierPosition, "Position", "p.position"},
    Column{OutlierValue, "Value", "p.value"},    Column{OutlierCount, "Count", "p.count"},
    Column{OutlierFence, "Fence", "p.fence"},
};
constexpr std::array kHistoryHead{
    Column{HistoryRunId, "Run Id", "r.id"},
    Column{HistoryDate, "Date", "r.started", Form::Date},
    Column{HistoryDescription, "Description", "r.description"},
};
// The value is that of the requested metric.
constexpr std::array kTableHistory{
    Column{TableHistoryRun, "Run Id", "r.id"},
    Column{TableHistoryDate, "Date", "r.started", Form::Date},
    Column{TableHistoryField, "Field Id", "rf.field"},
    Column{TableHistoryValue, "Value", ""},
};
constexpr std::array kCustomMetrics{
    Column{CustomMetricId, "Id", "cm.id"},
    Column{CustomMetricName, "Custom Metric", "cm.name"},
    Column{CustomMetricKey, "Key", "'M' || cm.id"},
    Column{CustomMetricFigure, "Figure", "v.figure"},
    Column{CustomMetricOutputName, "Output Name", "v.output_name"},
    Column{CustomMetricOutputValue, "Output Value", "v.value"},
    Column{CustomMetricExpression, "Expression", "v.expression"},
    Column{CustomMetricInputs, "Inputs",
           "(SELECT group_concat(name, ',') FROM (SELECT f.name AS name FROM custom_metric_input i JOIN field f ON "
           "f.id = i.field WHERE i.run = v.run AND i.metric = v.metric GROUP BY f.id ORDER BY MIN(i.position)))"},
    Column{CustomMetricUsedRows, "Used Rows", "v.used_rows"},
    Column{CustomMetricErrorRows, "Error Rows", "v.error_rows"},
    Column{CustomMetricTableId, "Table Id", "v.table_id"},
    Column{CustomMetricKind, "Kind", "v.kind"},
};
constexpr std::array kCustomMetricInputFields{
    Column{MetricInputFieldId, "Field Id", "f.id"},
    Column{MetricInputFieldName, "Field Name", "f.name"},
    Column{MetricInputMetric, "Metric", "i.standard_metric"},
};
constexpr std::array kCustomMetricHistory{
    Column{HistoryRunId, "Run Id", "r.id"},
    Column{HistoryDate, "Date", "r.started", Form::Date},
    Column{HistoryDescription, "Description", "r.description"},
    Column{MetricHistoryOutputName, "Output Name", "v.output_name"},
    Column{MetricHistoryOutputValue, "Output Value", "v.value"},
    Column{MetricHistoryExpression, "Expression", "v.expression"},
    Column{MetricHistoryUsedRows, "Used Rows", "v.used_rows"},
    Column{MetricHistoryErrorRows, "Error Rows", "v.error_rows"},
};
constexpr std::array kBusinessRules{
    Column{RuleId, "Id", "b.id"},
    Column{RuleKey, "Key", "'B' || b.id"},
    Column{RuleName, "Name", "b.name"},
    Column{RuleCondition, "Condition", "v.condition"},
    Column{RuleFailedRows, "Failed Rows", "v.failed_rows"},
    Column{RuleCheckedRows, "Checked Rows", "v.checked_rows"},
    Column{RuleInputs, "Inputs",
           "(SELECT group_concat(name, ',') FROM (SELECT f.name AS name FROM rule_input i JOIN field f "
           "ON f.id = i.field WHERE i.run = v.run AND i.rule = v.rule ORDER BY i.position))"},
    Column{RuleErrorRows, "Error Rows", "v.error_rows"},
    Column{RuleLoggedRows, "Logged Rows", "v.logged_rows"},
    Column{RuleTableId, "Table Id", "v.table_id"},
};
constexpr std::array kBusinessRuleHistory{
    Column{HistoryRunId, "Run Id", "r.id"},
    Column{HistoryDate, "Date", "r.started", Form::Date},
    Column{HistoryDescription, "Description", "r.description"},
    Column{RuleHistoryCondition, "Condition", "v.condition"},
    Column{RuleHistoryFailedRows, "Failed Rows", "v.failed_rows"},
    Column{RuleHistoryCheckedRows, "Checked Rows", "v.checked_rows"},
    Column{RuleHistoryErrorRows, "Error Rows", "v.error_rows"},
};
constexpr std::array kBusinessRuleRowLog{
    Column{RuleRowNumber, "Row", "l.record"},
    Column{RuleRowRuleId, "Rule Id", "l.rule"},
    Column{RuleRowPosition, "Position", "l.position"},
};
constexpr std::array kExecutionLog{
    Column{LogDate, "Date", "l.logged", Form::Date},
    Column{LogLevelCode, "Level", "l.level"},
    Column{LogTable, "Table", "CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END"},
    Column{LogText, "Text", "l.text"},
    Column{LogTableId, "Table Id", "l.table_id"},
};
constexpr std::array kAlerts{
    Column{AlertId, "Id", "a.id"},
    Column{AlertDsn, "Data Source", "d.name"},
    Column{AlertCatalog, "Catalog", "t.catalog"},
    Column{AlertSchema, "Schema", "t.schema"},
    Column{AlertTable, "Table Name", "t.name"},
    Column{AlertInput, "Input", "COALESCE(f.name, cm.name, b.name)"},
    Column{AlertObject, "Object Name", "t.object_name"},
    Column{AlertDescription, "Description", "a.description"},
    Column{AlertMetric, "Metric", "a.metric"},
    Column{AlertReserved, "Reserved", "NULL"},
    Column{AlertKindLetter, "Kind", "t.kind"},
    Column{AlertTypeCode, "Type", "a.type_code"},
    Column{AlertKey, "Key", "a.watched_key"},
    Column{AlertTableId, "Table Id", "a.table_id"},
    Column{AlertFieldId, "Field Id", "a.field"},
    Column{AlertWatchedId, "Watched Id", "COALESCE(cm.id, b.id)"},
    Column{AlertReportId, "Report Id", "a.job"},
    Column{AlertIsOfUser, "Of User", "a.origin = 'U'"},
    Column{AlertAuthor, "Author", "a.author"},
    Column{AlertCreated, "Created", "a.created", Form::Date},
};
constexpr std::array kAlertProperties{
    Column{AlertPropertyName, "Name", "p.name"},
    Column{AlertPropertyValue, "Value", "p.value"},
};
constexpr std::array kAllAlertProperties{
    Column{AllPropertiesAlert, "Alert Id", "p.alert"},
    Column{AllPropertiesName, "Name", "p.name"},
    Column{AllPropertiesValue, "Value", "p.value"},
};
constexpr std::array kAlertMutes{
    Column{MutedAlert, "Alert Id", "m.alert"},
    Column{MuteReason, "Reason", "m.reason"},
    Column{MuteAuthor, "Author", "m.author"},
    Column{MuteDate, "Date", "m.muted", Form::Date},
    Column{MuteFirstRun, "First Run Id", "m.first_run"},
    Column{MuteRuns, "Runs", "m.runs"},
    Column{MuteUntil, "Until", "m.until", Form::Date},
    Column{MuteLastRun, "Last Run Id", "COALESCE(MIN(m.end_by_runs, m.end_by_date), m.end_by_runs, m.end_by_date)"},
};
constexpr std::array kAlertFigures{
    Column{FigureAlert, "Alert Id", "a.id"},
    Column{FigureRun, "Run Id", "r.id"},
    Column{FigureDate, "Date", "r.started", Form::Date},
    // 1970-01-01 was a Thursday.
    Column{FigureWeekday, "Weekday", "(r.started / 86400000 + 3) % 7 + 1"},
    Column{FigureValue, "Value", ""}, // see alertFigureColumns()
    Column{FigureRows, "Rows", "br.checked_rows"},
};
constexpr std::array kAlertChanges{
    Column{AlertChangeDate, "Date", "n.changed", Form::Date},
    Column{AlertChangeAuthor, "User", "n.author"},
    Column{AlertChangeBefore, "Before", "n.condition_before"},
    Column{AlertChangeAfter, "After", "n.condition_after"},
};
constexpr std::array kAlertNotes{
    Column{AlertNoteId, "Id", "n.id"},
    Column{AlertNoteDate, "Date", "n.written", Form::Date},
    Column{AlertNoteUser, "User", "n.author"},
    Column{AlertNoteText, "Text", "n.text"},
};
constexpr std::array kNotes{
    Column{NoteId, "Id", "n.id"},
    Column{NoteDate, "Date", "n.written", Form::Date},
    Column{NoteCategory, "Category", "g.name"},
    Column{NoteUser, "User", "n.author"},
    Column{NoteText, "Text", "n.text"},
    Column{NoteCategoryId, "Category Id", "COALESCE(n.category, -1)"},
};
constexpr std::array kNoteCategories{
    Column{CategoryId, "Id", "g.id"},
    Column{CategoryName, "Name", "g.name"},
};
constexpr std::array kCharts{
    Column{ChartId, "Id", "h.id"},
    Column{ChartName, "Name", "h.name"},
    Column{ChartDescription, "Description", "h.description"},
};
constexpr std::array kChartProperties{
    Column{ChartPropertyName, "Name", "p.name"},
    Column{ChartPropertyPosition, "Position", "p.position"},
    Column{ChartPropertyValue, "Value", "p.value"},
};
constexpr std::array kKeyAnalysis{
    Column{KeyOtherFieldId, "Field Id", "k.other_field"},
    Column{KeyFieldName, "Field Name", "f.name"},
    Column{KeyDsn, "Data Source", "d.name"},
    Column{KeyCatalog, "Catalog", "t.catalog"},
    Column{KeySchema, "Schema", "t.schema"},
    Column{KeyTable, "Table Name", "CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END"},
    Column{KeyMatchPercent, "Match Percentage", "k.match_percent"},
};
constexpr std::array kKeyAnalysisOutliers{
    Column{KeyOutlierValue, "Value", ""},
    Column{KeyOutlierCount, "Count", ""},
};
constexpr std::array kRdaCfgs{
    Column{RdaId, "Id", "x.id"},
    Column{RdaName, "Name", "x.name"},
    Column{RdaDescription, "Description", "x.description"},
    Column{RdaFields, "Fields", "(SELECT COUNT(*) FROM redundancy_field WHERE redundancy = x.id)"},
};
constexpr std::array kRdaCfgFields{
    Column{RdaFieldId, "Field Id", "f.id"},
    Column{RdaFieldName, "Field Name", "f.name"},
    Column{RdaFieldDsn, "Data Source", "d.name"},
    Column{RdaFieldCatalog, "Catalog", "t.catalog"},
    Column{RdaFieldSchema, "Schema", "t.schema"},
    Column{RdaFieldTable, "Table Name", "CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END"},
};
constexpr std::array kTypeBreakdown{
    Column{BreakdownValues, "Values", "b.value_count"},
    Column{BreakdownRows, "Rows", "b.row_count"},
    Column{BreakdownReading, "Reading", "b.reading"},
    Column{BreakdownFitValues, "Fit Values", "b.fit_values"},
    Column{BreakdownFitRows, "Fit Rows", "b.fit_rows"},
    Column{BreakdownAmbiguity, "Ambiguity", "b.ambiguity"},
    Column{BreakdownHasFigures, "Has Figures", "b.has_figures"},
};
constexpr std::array kTypeForms{
    Column{FormWord, "Form", "b.form"},
    Column{FormValues, "Values", "b.value_count"},
    Column{FormRows, "Rows", "b.row_count"},
    Column{FormExample, "Example", "b.example"},
};
constexpr std::array kFitReadings{
    Column{FitFieldId, "Field Id", "b.field"},
    Column{FitReading, "Reading", "b.reading"},
    Column{FitFitRows, "Fit Rows", "b.fit_rows"},
    Column{FitRows, "Rows", "b.row_count"},
    Column{FitHasFigures, "Has Figures", "b.has_figures"},
};
constexpr std::array kFindings{
    Column{FindingTableId, "Table Id", "b.table_id"},
    Column{FindingTableName, "Table", "CASE WHEN t.object_name <> '' THEN t.object_name ELSE t.name END"},
    Column{FindingFieldId, "Field Id", "b.field"},
    Column{FindingFieldName, "Field", "COALESCE(f.name, '')"},
    Column{FindingCode, "Code", "b.code"},
    Column{FindingLikelihood, "Likelihood", "b.likelihood"},
    Column{FindingValues, "Values", "b.value_count"},
    Column{FindingRows, "Rows", "b.row_count"},
    Column{FindingDetail, "Detail", "b.detail"},
    Column{FindingCondition, "Condition", "b.condition"},
    Column{FindingDismissal, "Dismissal", "x.reason"},
    Column{FindingDismissedBy, "Dismissed By", "x.author"},
    Column{FindingDismissed, "Dismissed", "x.dismissed", Form::Date},
};
constexpr std::array kTasks{
    Column{TaskId, "Id", "w.id"},
    Column{TaskKind, "Kind", "w.kind"},
    Column{TaskFieldId, "Field Id", "COALESCE(w.field, -1)"},
    Column{TaskDefinition, "Definition", "w.definition"},
};

/// Composes layouts that contain the metrics from parts, numbering their columns in sequence.
class Composer {
  public:
    Composer& add(std::span<const Column> part) {
        for (Column column : part) {
            column.index = static_cast<int>(m_columns.size());
            m_columns.push_back(column);
        }
        return *this;
    }

    Composer& addMetrics() {
        // A deque does not move its texts as it grows.
        static std::deque<std::string> expressions;
        for (const MetricInfo& metric : metricCatalogue()) {
            expressions.push_back("rf." + std::string(metric.column));
            m_columns.push_back({static_cast<int>(m_columns.size()), metric.name, expressions.back()});
        }
        return *this;
    }

    [[nodiscard]] std::vector<Column> take() { return std::move(m_columns); }

  private:
    std::vector<Column> m_columns;
};

/// The value of an alert's figure in a run, whichever metric it is.
std::vector<Column> alertFigureColumns() {
    static const std::string figure = [] {
        std::string sql = "CASE a.type_code WHEN 'CM' THEN cv.value WHEN 'BR' THEN br.failed_rows ELSE CASE a.metric";
        for (const MetricInfo& metric : metricCatalogue())
            sql += " WHEN " + std::to_string(static_cast<int>(metric.id)) + " THEN rf." + std::string(metric.column);
        return sql + " END END";
    }();
    std::vector<Column> columns(kAlertFigures.begin(), kAlertFigures.end());
    columns[FigureValue].sql = figure;
    return columns;
}

std::vector<Layout> makeAll() {
    static const auto figures = alertFigureColumns();
    static const auto fields = Composer().add(kFieldHead).addMetrics().add(kFieldTail).take();
    static const auto fieldsPkr = Composer().add(kFieldHead).add(kAnalysisCounts).addMetrics().add(kFieldTail).take();
    static const auto collected = Composer().add(kFieldHead).add(kFieldSource).addMetrics().add(kFieldTail).take();
    static const auto collectedPkr =
        Composer().add(kFieldHead).add(kFieldSource).add(kAnalysisCounts).addMetrics().add(kFieldTail).take();
    static const auto history = Composer().add(kHistoryHead).addMetrics().take();
    return {
        {"getReports", kReports},
        {"getReport", kReport},
        {"getJobs", kJobs},
        {"getDSNList", kDsnList},
        {"getTableList", kTableList},
        {"getTableOfField", kTableList},
        {"getTablesOfRun", kTablesOfRun},
        {"getFieldsOfRun", kFieldsOfRun},
        {"getFieldList", fields},
        {"getFieldListPKR", fieldsPkr},
        {"getTextFileFieldInfo", kTextFileFields},
        {"getGlobalCollections", kCollections},
        {"getGlobalCollFieldList", collected},
        {"getGlobalCollFieldListPKR", collectedPkr},
        {"getGlobalCollForTable", kCollectionsForTable},
        {"getFreqDist", kFreqDist},
        {"getPatternDist", kPatternDist},
        {"getPercentiles", kPercentiles},
        {"getOutliers", kOutliers},
        {"getHistogram", kHistogram},
        {"getFreqDistRanks", kRanks},
        {"getTypeBreakdown", kTypeBreakdown},
        {"getTypeForms", kTypeForms},
        {"getFitReadings", kFitReadings},
        {"getFindings", kFindings},
        {"getTableFindings", kFindings},
        {"getFieldFindings", kFindings},
        {"getFieldHistory", history},
        {"getTableHistory", kTableHistory},
        {"getCustomMetrics", kCustomMetrics},
        {"getCustomMetricInputFields", kCustomMetricInputFields},
        {"getCustomMetricHistory", kCustomMetricHistory},
        {"getBusinessRules", kBusinessRules},
        {"getBusinessRuleHistory", kBusinessRuleHistory},
        {"getBusinessRuleRowLog", kBusinessRuleRowLog},
        {"getExecutionLog", kExecutionLog},
        {"getAlerts", kAlerts},
        {"getAlertProperties", kAlertProperties},
        {"getAllAlertProperties", kAllAlertProperties},
        {"getAlertFigures", figures},
        {"getWatchedFigures", figures},
        {"getAlertMutes", kAlertMutes},
        {"getAlertChanges", kAlertChanges},
        {"getAlertNotes", kAlertNotes},
        {"getTableNotes", kNotes},
        {"getFieldNotes", kNotes},
        {"getNoteCategories", kNoteCategories},
        {"getTableCharts", kCharts},
        {"getCategoryCharts", kCharts},
        {"getChartProperties", kChartProperties},
        {"getPKFKAnalysis", kKeyAnalysis},
        {"getPKFKAnalysisOutliers", kKeyAnalysisOutliers},
        {"getRdaCfgs", kRdaCfgs},
        {"getRdaCfg", kRdaCfgs},
        {"getRdaCfgFields", kRdaCfgFields},
        {"getTaskList", kTasks},
    };
}

} // namespace

std::span<const Layout> all() {
    static const std::vector<Layout> layouts = makeAll();
    return layouts;
}

const Layout& of(std::string_view operation) {
    return *std::ranges::find(all(), operation, &Layout::operation);
}

} // namespace tavix::layout
