#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "base/Clock.h"
#include "base/KvbString.h"
#include "source/Credentials.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewDisplayMessage;
class OrvintaPatternGen;
struct AlertDefinition;
struct TableSource;

/// How a text file was read; the result of getTextFileInfo.
struct TextFileInfo {
    KvbString path;
    char delimiter = ',';
    bool hasHeader = true;
    KvbString encoding;
    std::int64_t size = 0;
};

/// A source file that has moved or was deleted since the run.
struct MissingFile {
    std::string path;       ///< as the run read it
    std::string suggestion; ///< a file of the same name and size beside the repository; empty without one
};

/// A session with a profile repository. Ordinary failures return false or a null cursor; getErrorString() then gives
/// the reason. Ids are those of the repository; the ids of tables and fields are the same in every run. A report is a
/// job with its runs; where an operation's name says "jobs", as in getJobs, it means runs.
///
/// Operations on values, metrics and structure use the current run; for a field that it does not have, as in
/// collections, they use the latest run that has it. Cursor layouts: access/Layouts.h.
class PrViewer {
  public:
    struct Release {
        void operator()(PrViewer* viewer) const { viewer->release(); }
    };
    using Handle = std::unique_ptr<PrViewer, Release>;
    /// `clock` dates new notes and must outlive the viewer; null: the system's.
    [[nodiscard]] static Handle create(const Clock* clock = nullptr);

    // Session. The connection string is "sqlite:PATH" or a plain path. Opening writes nothing; operations that change
    // the repository open it for writing when called. A failing operation leaves the session and the current job and
    // run unchanged.
    bool init(const KvbString& connection);
    bool close();
    void release();
    /// The text of the last failure; kept until the next failure or until init() succeeds.
    [[nodiscard]] KvbString getErrorString() const;

    /// Called within next() of every ProfileCursor of this viewer without a sink of its own; if it asks to stop, next()
    /// throws GenException, "The reading was stopped.". Null, the initial state: none. Must outlive the viewer or be
    /// reset. The rows of a drill-down end where they are stopped, see below.
    void setDisplayMessage(PrViewDisplayMessage* sink);

    // Report: a job and, once one is set, its latest run.
    /// Every job of the repository, for the shell's list.
    [[nodiscard]] ProfileCursorHandle getReports();
    /// `folderId` is -1 if the report is in no folder; `text` is its description.
    bool reportGetReportInfo(int jobId, int& folderId, KvbString& text);
    bool setCurrentJobSetup(int jobId);
    [[nodiscard]] ProfileCursorHandle getReport(int jobId);
    /// `path` joins the folders' names with "/"; `text` is the folder's own name.
    bool folderGetPathFromId(int folderId, KvbString& path, KvbString& text);

    // Runs of the current job, the latest first.
    [[nodiscard]] ProfileCursorHandle getJobs();
    /// -1 on failure.
    [[nodiscard]] int getJobCount();
    /// The current run; -1 without one.
    [[nodiscard]] int getCurrentJob() const;
    bool setCurrentJob(int runId);
    /// A warning that the current run is damaged, for users; null if nothing is known. Checked when the run becomes
    /// current, as far as that costs next to nothing; `tavix check` checks everything.
    [[nodiscard]] KvbString getRunWarning() const;
    bool getJobInfo(int runId, double& date, KvbString& description);
    /// Deletes the runs of the current job with `first` <= id <= `last`; -1: no bound. `job` -1 is the current job. At
    /// least one run must remain.
    bool deleteJobs(int first, int last, int job);

    // Structure of the current run. `dataSourceId` -1: all.
    [[nodiscard]] ProfileCursorHandle getDSNList();
    [[nodiscard]] ProfileCursorHandle getTableList(int dataSourceId);
    /// One row, the table of the field, in the current run or else the latest run with the field.
    [[nodiscard]] ProfileCursorHandle getTableOfField(int fieldId);
    /// Tables and fields of any run of the current job, each with one query.
    [[nodiscard]] ProfileCursorHandle getTablesOfRun(int runId);
    [[nodiscard]] ProfileCursorHandle getFieldsOfRun(int runId);
    [[nodiscard]] ProfileCursorHandle getFieldList(int tableId);
    [[nodiscard]] ProfileCursorHandle getFieldListPKR(int tableId);
    /// `kind` is the table's letter: Y plain, S query, D filter.
    bool getFieldInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema, KvbString& table,
                      KvbString& object, char& kind, KvbString& field, int& tableId);
    /// For drill-downs: the same, the text of an SQL query, and the condition of a filtered table, from the latest run
    /// that has the field.
    bool getDrilldownInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema, KvbString& table,
                          KvbString& object, char& kind, KvbString& field, KvbString& query, int& tableId,
                          KvbString& filter);
    bool getTextFileInfo(int tableId, TextFileInfo& info);
    /// Of a table with fields. Fails if the run does not say where the rows came from.
    bool getTableSource(int tableId, TableSource& source);
    [[nodiscard]] ProfileCursorHandle getTextFileFieldInfo(int tableId);

    // Collections of fields, across all jobs of the repository. A field's metrics are those of the current run if it
    // has the field, else of the latest run that has it, else null.
    [[nodiscard]] ProfileCursorHandle getGlobalCollections();
    [[nodiscard]] ProfileCursorHandle getGlobalCollFieldList(int collectionId);
    [[nodiscard]] ProfileCursorHandle getGlobalCollFieldListPKR(int collectionId);
    [[nodiscard]] ProfileCursorHandle getGlobalCollForTable(int tableId);
    /// Removes from all collections the fields of the table that are in no run any more.
    bool refreshGlobalCollForTable(int tableId);
    bool createGlobalCollFieldMapping(int collectionId, int fieldId);

    // Catalogue of metrics and of the expression language's functions; needs no session.
    [[nodiscard]] int getNumMetrics() const;
    [[nodiscard]] KvbString getMetricDescription(int metricId) const;
    [[nodiscard]] int getFunctionCount() const;
    /// `parameterTypes` has a letter for each parameter and `returnType` is one: a any, b boolean, d date, i integer, r
    /// real, s text, S a text literal. A call has at least `count1` and at most `count2` arguments; arguments beyond
    /// the letters have the last letter's type. False for an index outside 0 to getFunctionCount() - 1.
    bool getFunctionInfo(int index, KvbString& name, KvbString& parameterTypes, char& returnType,
                         KvbString& description, int& count1, int& count2);

    // Values. `filter` is a filter text: expression code, perhaps after a condition block; empty for none. Its fields
    // are `Value`, in patterns the pattern, and `Count`. Rows keep their order and rank. A text that is not a condition
    // is a failure, with line and column. Rows for which the filter cannot be evaluated do not pass; the cursor's
    // getWarning() reports them. `sink` may be null and must outlive the cursor: within next() it receives the number
    // of rows read, passing or not, and may stop the cursor, which makes next() throw.
    [[nodiscard]] ProfileCursorHandle getFreqDist(int fieldId, const KvbString& filter,
                                                  PrViewDisplayMessage* sink = nullptr);
    [[nodiscard]] ProfileCursorHandle getPatternDist(int fieldId, const KvbString& filter,
                                                     PrViewDisplayMessage* sink = nullptr);
    [[nodiscard]] ProfileCursorHandle getPercentiles(int fieldId);
    [[nodiscard]] ProfileCursorHandle getOutliers(int fieldId);
    /// The bins of the field's histogram in ascending order; none if its run stored no histogram: a boolean field, one
    /// without values, or a run of an older version.
    [[nodiscard]] ProfileCursorHandle getHistogram(int fieldId);
    /// The shape of the value distribution by rank, read without the values: about one row for 4,096 of them.
    [[nodiscard]] ProfileCursorHandle getFreqDistRanks(int fieldId);

    // Types and findings. A run of an older version has none of them: "not examined", which differs from none found.
    /// Whether the current run looked for them. False on failure too.
    [[nodiscard]] bool isExamined();
    /// One row; none if the field was not examined.
    [[nodiscard]] ProfileCursorHandle getTypeBreakdown(int fieldId);
    /// How many values are written in which form, the form with the most rows first.
    [[nodiscard]] ProfileCursorHandle getTypeForms(int fieldId);
    /// A row for each field of the table that was examined, in the current run or else the latest one with the table.
    [[nodiscard]] ProfileCursorHandle getFitReadings(int tableId);
    /// Of the current run, the likeliest first, then by rows; those that were dismissed are among them.
    [[nodiscard]] ProfileCursorHandle getFindings();
    /// About the table and its fields.
    [[nodiscard]] ProfileCursorHandle getTableFindings(int tableId);
    [[nodiscard]] ProfileCursorHandle getFieldFindings(int fieldId);
    /// In all runs. `fieldId` 0: a finding about the table. Replaces an earlier reason.
    bool dismissFinding(int tableId, int fieldId, const KvbString& code, const KvbString& user,
                        const KvbString& reason);
    bool restoreFinding(int tableId, int fieldId, const KvbString& code);

    /// Numbers of rows; -1 on failure.
    [[nodiscard]] int getFreqDistCount(int fieldId);
    [[nodiscard]] int getPatternDistCount(int fieldId);
    [[nodiscard]] int getPercentilesCount(int fieldId);
    bool getOutliersCount(int fieldId, int& low, int& high);
    /// Sum of all counts; -1 on failure.
    [[nodiscard]] std::int64_t getFreqDistSum(int fieldId);
    [[nodiscard]] KvbString getAbbreviatedPattern(const KvbString& pattern) const;

    // History over the runs of the current job, oldest first; `limit` is the number of latest runs, 0: all.
    [[nodiscard]] ProfileCursorHandle getFieldHistory(const KvbString& dataSource, const KvbString& catalog,
                                                      const KvbString& schema, const KvbString& table,
                                                      const KvbString& object, const KvbString& field, int limit);
    /// One metric of all fields of the table in the current run and those before it; the fields of a run in its order.
    [[nodiscard]] ProfileCursorHandle getTableHistory(int tableId, int metricId, int limit);
    [[nodiscard]] ProfileCursorHandle getCustomMetricHistory(const KvbString& key);
    [[nodiscard]] ProfileCursorHandle getBusinessRuleHistory(const KvbString& key);
    /// The log lines of the current run.
    [[nodiscard]] ProfileCursorHandle getExecutionLog();

    // Custom metrics and business rules of the current run; `tableId` -1: all tables. A run from before they existed
    // has none. Keys are the same in every run.
    [[nodiscard]] ProfileCursorHandle getCustomMetrics(int tableId);
    /// A key that is not in the repository is a failure; the result is empty for one that this run does not have.
    [[nodiscard]] ProfileCursorHandle getCustomMetricInputFields(const KvbString& key);
    [[nodiscard]] ProfileCursorHandle getBusinessRules(int tableId);
    /// The rows that violate a rule, as far as the run kept them, from index `first` on, which counts from 0. Three
    /// bookkeeping columns (number of the row in its table, id of the rule, index) come first, then the fields of the
    /// table's key and, if `withInputs`, the fields that the condition reads.
    [[nodiscard]] ProfileCursorHandle getBusinessRuleRowLog(int ruleId, int first, bool withInputs);

    // Alerts, of all jobs. An alert keeps its id when a run of its job stores it again.
    [[nodiscard]] ProfileCursorHandle getAlerts();
    [[nodiscard]] ProfileCursorHandle getAlertProperties(int alertId);
    /// Those of all alerts, alert by alert.
    [[nodiscard]] ProfileCursorHandle getAllAlertProperties();
    /// The figures that alerts of that job watch: for each alert a row for each of the last `runs` runs (0: all) of the
    /// job up to `lastRun` (-1: its latest), the latest first. `alerts`: only these; empty: all of the job.
    [[nodiscard]] ProfileCursorHandle getAlertFigures(int jobId, int lastRun, int runs,
                                                      const std::vector<int>& alerts = {});
    /// The same for an alert of the current job that need not be stored. Its rule is not read.
    [[nodiscard]] ProfileCursorHandle getWatchedFigures(const AlertDefinition& watched, int lastRun, int runs);
    /// `alertId` -1 creates an alert of the current job that belongs to the user, and receives its id; no run of the
    /// job changes it. Fails for an alert that the job defines. A changed rule is kept in getAlertChanges().
    bool createEditAlert(int& alertId, const AlertDefinition& definition, const KvbString& user);
    /// Fails for an alert that the job defines.
    bool deleteAlert(int alertId);
    /// The mutes of all alerts, also those that have ended. An alert has at most one.
    [[nodiscard]] ProfileCursorHandle getAlertMutes();
    /// From the current run on, for `runs` runs (0: no such end) and for runs that start before `until` (none: no such
    /// end). Replaces an earlier mute. The reason is a note (base/NoteText.h).
    bool muteAlert(int alertId, const KvbString& user, const KvbString& reason, int runs, std::optional<UtcTime> until);
    bool unmuteAlert(int alertId);
    /// The latest first.
    [[nodiscard]] ProfileCursorHandle getAlertChanges(int alertId);
    [[nodiscard]] ProfileCursorHandle getAlertNotes(int alertId);
    bool createNewAlertNote(int alertId, const KvbString& user, const KvbString& text);
    bool deleteAlertNote(int noteId);

    // Several changes in one transaction: until keepChanges() they are visible to this session only. Other writers
    // wait, so do not ask the user anything in between. If a change fails, keepChanges() fails and keeps none. Runs
    // cannot be deleted in between. The end of the session drops changes that were not kept.
    bool beginChanges();
    bool keepChanges();
    void dropChanges();

    // Notes. `kind` is 'T' for a table, 'C' for a collection; `order` 1 newest first, else oldest first.
    [[nodiscard]] ProfileCursorHandle getTableNotes(int ownerId, char kind, int order);
    [[nodiscard]] ProfileCursorHandle getFieldNotes(int fieldId, int order);
    [[nodiscard]] ProfileCursorHandle getNoteCategories();
    /// `categoryId` -1: none. Dates the note now. Texts and names: base/NoteText.h.
    bool createNewTableNote(int ownerId, char kind, int categoryId, const KvbString& user, const KvbString& text);
    bool createNewFieldNote(int fieldId, int categoryId, const KvbString& user, const KvbString& text);
    /// Keeps the note's user and time.
    bool editTableNote(int noteId, int categoryId, const KvbString& text);
    bool editFieldNote(int noteId, int categoryId, const KvbString& text);
    bool deleteTableNote(int noteId);
    bool deleteFieldNote(int noteId);
    bool createNewNoteCategory(const KvbString& name);
    bool editNoteCategory(int categoryId, const KvbString& name);
    /// Keeps its notes, without a category.
    bool deleteNoteCategory(int categoryId);

    // Charts. `chartId` -1 creates a chart and receives its id.
    [[nodiscard]] ProfileCursorHandle getTableCharts(int tableId);
    [[nodiscard]] ProfileCursorHandle getCategoryCharts(int category);
    [[nodiscard]] ProfileCursorHandle getChartProperties(int chartId);
    bool createEditTableChart(int& chartId, int tableId, const KvbString& name, const KvbString& description);
    bool createEditCategoryChart(int& chartId, int category, const KvbString& name, const KvbString& description);
    bool deleteChart(int chartId);
    bool clearChartProperties(int chartId);
    bool addChartProperty(int chartId, const KvbString& name, int position, const KvbString& value);

    // Primary key / foreign key analysis of the current run, or, for a field that it does not have, of the latest run
    // that has it.
    [[nodiscard]] ProfileCursorHandle getPKFKAnalysis(int fieldId);
    [[nodiscard]] ProfileCursorHandle getPKFKAnalysisOutliers(int fieldId, int otherFieldId);
    bool generatePKFKAnalysis(int fieldId, int otherFieldId);
    /// True even if there is none.
    bool deletePKFKAnalysis(int fieldId, int otherFieldId);

    // Redundant data analysis.
    [[nodiscard]] ProfileCursorHandle getRdaCfgs();
    [[nodiscard]] ProfileCursorHandle getRdaCfg(int cfgId);
    [[nodiscard]] ProfileCursorHandle getRdaCfgFields(int cfgId);
    [[nodiscard]] ProfileCursorHandle getRdaResults(int cfgId, int leftFieldId, int rightFieldId);
    [[nodiscard]] ProfileCursorHandle getRedundantAnalysisCommon(int cfgId, int leftFieldId, int rightFieldId);
    [[nodiscard]] ProfileCursorHandle getRedundantAnalysisLeft(int cfgId, int leftFieldId, int rightFieldId);
    [[nodiscard]] ProfileCursorHandle getRedundantAnalysisRight(int cfgId, int leftFieldId, int rightFieldId);
    /// Receives the new configuration's id.
    bool createRdaCfg(const KvbString& name, const KvbString& description, int& cfgId);
    bool updateRdaCfg(int cfgId, const KvbString& name, const KvbString& description);
    bool deleteRdaCfg(int cfgId);
    bool createFldRdaMap(int cfgId, int fieldId);
    bool deleteAllRdaMaps(int cfgId);

    // Tasks of the job generator.
    [[nodiscard]] ProfileCursorHandle getTaskList(int jobId);

    /// Provides user and password when a database asks for them in a drill-down; without it, only the environment does.
    void setSourceCredentials(source::AskCredentials ask);

    // Drill-down to the rows of the source, with all columns of the table, in the source's order; for a filtered table,
    // only the rows that pass its condition. The rows are read from the source as it is now: a cursor's getWarning()
    // reports changes since the run. `sink` may be null; it receives progress within next(), can stop the reading, and
    // must outlive the cursor. The cursors do not use the repository and stay valid when the viewer closes.
    /// The rows with a value, or, if `isPattern`, those whose value has this character pattern, in its full form. A
    /// null `value` means null. An empty one means the empty text and, if the run has none in this field, null as well,
    /// because a list of values read as plain texts shows both alike. `patterns` is ignored: patterns are formed as in
    /// the run.
    [[nodiscard]] PrViewerDrillCursorHandle drillDown(int fieldId, const KvbString& value, bool isPattern,
                                                      PrViewDisplayMessage* sink, OrvintaPatternGen* patterns);
    /// The rows whose value in the field meets a condition over `Value`, written as a filter of its distribution.
    [[nodiscard]] PrViewerDrillCursorHandle drillDownWhere(int fieldId, const KvbString& condition,
                                                           PrViewDisplayMessage* sink);
    /// The rows with a value, from index `first` on, which counts from 0. Null as above.
    [[nodiscard]] ProfileCursorHandle drillDownMatch(int fieldId, const KvbString& value, PrViewDisplayMessage* sink,
                                                     int first);
    /// How many rows with the value or pattern of a drillDown the run counted, 0 if it has none; -1 on failure, and
    /// kSampleOnly if it counted only a sample of the rows. For a comparison with the source see access/SourceChange.h.
    static constexpr std::int64_t kSampleOnly = -2;
    [[nodiscard]] std::int64_t getDrillDownCount(int fieldId, const KvbString& value, bool isPattern);

    /// The missing file that made the last drill-down fail; nothing if it succeeded or failed otherwise.
    [[nodiscard]] std::optional<MissingFile> getMissingFile() const;
    /// Records that the file that runs read at `oldPath` is now at `newPath`, or in the folder `newPath` under its old
    /// name. Drill-downs of this session read it there. If the file has the size that a run recorded, the path is
    /// stored in the repository for later sessions as well; otherwise `remark` gives the reason. Fails if no run has
    /// read `oldPath`, or if nothing exists at `newPath`.
    bool relocateFile(const KvbString& oldPath, const KvbString& newPath, KvbString& remark);

    static void freeProfileCursor(ProfileCursor* cursor);
    static void freeDrillDown(PrViewerDrillCursor* cursor);

  private:
    PrViewer();
    ~PrViewer();
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tavix
