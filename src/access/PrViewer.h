#pragma once

#include "access/PrViewerDrillCursor.h"
#include "access/ProfileCursor.h"
#include "base/KvbString.h"
#include "source/Credentials.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tavix {

class Clock;
class PrViewDisplayMessage;
class OrvintaPatternGen;

/// How a text file was read, as getTextFileInfo tells it.
struct TextFileInfo {
    KvbString path;
    char delimiter = ',';
    bool hasHeader = true;
    KvbString encoding;
    std::int64_t size = 0;
};

/// A file of a source that is not where a run read it.
struct MissingFile {
    std::string path;       ///< as the run read it
    std::string suggestion; ///< a file of the same name and size beside the repository; empty when there is none
};

/// A session with a profile repository. Ordinary failures are a false result or a null cursor; getErrorString() then
/// says why. Ids are those of the repository; table and field ids name the same object in every run. "Run" is what
/// the names below call a job, for a report is a job with its runs: getJobs lists runs.
///
/// Operations that concern values, metrics and structure speak of the current run; the values of a field that it does
/// not have are those of the latest run that does, as in collections. Cursor layouts: access/Layouts.h.
class PrViewer {
  public:
    struct Release {
        void operator()(PrViewer* viewer) const { viewer->release(); }
    };
    using Handle = std::unique_ptr<PrViewer, Release>;
    /// `clock` dates new notes and must outlive the viewer; the system's when null.
    [[nodiscard]] static Handle create(const Clock* clock = nullptr);

    // Session. The connection string is "sqlite:PATH" or a plain path. Opening writes nothing; the operations that
    // change the repository open it for writing when they are called. A failing operation leaves the session and the
    // current job and run as they were.
    bool init(const KvbString& connection);
    bool close();
    void release();
    /// The text of the last failure; it stays until the next failure or until init() succeeds.
    [[nodiscard]] KvbString getErrorString() const;

    /// Asked within next() of every ProfileCursor of this viewer that was given no sink of its own, and may stop it:
    /// then next() throws GenException, "The reading was stopped.". Null, as in the beginning, for none. It must
    /// outlive the viewer or be taken back. Rows of a source that a drill-down reads end where they are stopped, see
    /// there.
    void setDisplayMessage(PrViewDisplayMessage* sink);

    // Report: a job and, once one is set up, its latest run.
    /// Every job of the repository, for a shell's list.
    [[nodiscard]] ProfileCursorHandle getReports();
    /// `folderId` is -1 when the report lies in no folder; `text` is its description.
    bool reportGetReportInfo(int jobId, int& folderId, KvbString& text);
    bool setCurrentJobSetup(int jobId);
    [[nodiscard]] ProfileCursorHandle getReport(int jobId);
    /// `path` joins the folders' names with "/"; `text` is the folder's own name.
    bool folderGetPathFromId(int folderId, KvbString& path, KvbString& text);

    // Runs of the current job, the latest first.
    [[nodiscard]] ProfileCursorHandle getJobs();
    /// -1 on failure.
    [[nodiscard]] int getJobCount();
    /// The current run; -1 when there is none.
    [[nodiscard]] int getCurrentJob() const;
    bool setCurrentJob(int runId);
    /// That the current run is damaged, in words for a user; null when nothing is known of that. Looked at when the run
    /// becomes current, as far as it costs next to nothing; `tavix check` looks at everything.
    [[nodiscard]] KvbString getRunWarning() const;
    bool getJobInfo(int runId, double& date, KvbString& description);
    /// Deletes the runs of the current job with `first` <= id <= `last`; -1 stands for no bound. `job` -1 is the
    /// current job. At least one run must stay.
    bool deleteJobs(int first, int last, int job);

    // Structure of the current run. `dataSourceId` -1 stands for all.
    [[nodiscard]] ProfileCursorHandle getDSNList();
    [[nodiscard]] ProfileCursorHandle getTableList(int dataSourceId);
    /// One row, the table of the field: as the current run has it, or the latest run with the field.
    [[nodiscard]] ProfileCursorHandle getTableOfField(int fieldId);
    [[nodiscard]] ProfileCursorHandle getFieldList(int tableId);
    [[nodiscard]] ProfileCursorHandle getFieldListPKR(int tableId);
    /// `kind` is the table's letter: Y plain, S query, D filter.
    bool getFieldInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema, KvbString& table,
                      KvbString& object, char& kind, KvbString& field, int& tableId);
    /// What a drill-down needs to know: the same, the text of an SQL query, and the condition of a filtered table, as
    /// the latest run that has the field says.
    bool getDrilldownInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema, KvbString& table,
                          KvbString& object, char& kind, KvbString& field, KvbString& query, int& tableId,
                          KvbString& filter);
    bool getTextFileInfo(int tableId, TextFileInfo& info);
    [[nodiscard]] ProfileCursorHandle getTextFileFieldInfo(int tableId);

    // Collections of fields, across all jobs of the repository. A field's metrics are those of the current run if it
    // has the field, else those of the latest run that does, else null.
    [[nodiscard]] ProfileCursorHandle getGlobalCollections();
    [[nodiscard]] ProfileCursorHandle getGlobalCollFieldList(int collectionId);
    [[nodiscard]] ProfileCursorHandle getGlobalCollFieldListPKR(int collectionId);
    [[nodiscard]] ProfileCursorHandle getGlobalCollForTable(int tableId);
    /// Takes fields of the table out of all collections when no run has them any more.
    bool refreshGlobalCollForTable(int tableId);
    bool createGlobalCollFieldMapping(int collectionId, int fieldId);

    // Catalogue of metrics and of the expression language's functions, which need no session.
    [[nodiscard]] int getNumMetrics() const;
    [[nodiscard]] KvbString getMetricDescription(int metricId) const;
    [[nodiscard]] int getFunctionCount() const;
    /// `parameterTypes` has a letter for each parameter and `returnType` is one: a any, b boolean, d date, i integer,
    /// r real, s text, S a text that is written out. A call has at least `count1` and at most `count2` arguments; where
    /// they are more than the letters, the last letter goes on. False for an index outside 0 to getFunctionCount() - 1.
    bool getFunctionInfo(int index, KvbString& name, KvbString& parameterTypes, char& returnType,
                         KvbString& description, int& count1, int& count2);

    // Values. `filter` is a filter text, expression code with or without its condition block; empty for none. Its
    // fields are `Value`, in patterns the pattern, and `Count`. Rows pass in stored order and keep their rank. A text
    // that is no condition is a failure that names line and column. Rows that the filter cannot be evaluated for do not
    // pass, and the cursor's getWarning() tells of them. `sink` may be null and has to outlive the cursor: within
    // next() it is told how many of all rows were looked at, and may stop the walk, upon which next() throws.
    [[nodiscard]] ProfileCursorHandle getFreqDist(int fieldId, const KvbString& filter,
                                                  PrViewDisplayMessage* sink = nullptr);
    [[nodiscard]] ProfileCursorHandle getPatternDist(int fieldId, const KvbString& filter,
                                                     PrViewDisplayMessage* sink = nullptr);
    [[nodiscard]] ProfileCursorHandle getPercentiles(int fieldId);
    [[nodiscard]] ProfileCursorHandle getOutliers(int fieldId);
    /// Numbers of rows; -1 on failure.
    [[nodiscard]] int getFreqDistCount(int fieldId);
    [[nodiscard]] int getPatternDistCount(int fieldId);
    [[nodiscard]] int getPercentilesCount(int fieldId);
    bool getOutliersCount(int fieldId, int& low, int& high);
    /// Sum of all counts; -1 on failure.
    [[nodiscard]] std::int64_t getFreqDistSum(int fieldId);
    [[nodiscard]] KvbString getAbbreviatedPattern(const KvbString& pattern) const;

    // History over the runs of the current job, oldest first; `limit` is the number of latest runs, 0 for all.
    [[nodiscard]] ProfileCursorHandle getFieldHistory(const KvbString& dataSource, const KvbString& catalog,
                                                      const KvbString& schema, const KvbString& table,
                                                      const KvbString& object, const KvbString& field, int limit);
    [[nodiscard]] ProfileCursorHandle getCustomMetricHistory(const KvbString& key);
    [[nodiscard]] ProfileCursorHandle getBusinessRuleHistory(const KvbString& key);
    /// What the current run reported while it was made.
    [[nodiscard]] ProfileCursorHandle getExecutionLog();

    // Custom metrics and business rules of the current run; `tableId` -1 stands for all tables. A run that was made
    // before there were any has none. Keys name the same thing in every run.
    [[nodiscard]] ProfileCursorHandle getCustomMetrics(int tableId);
    /// A key that the repository does not know is a failure; nothing for one that this run does not have.
    [[nodiscard]] ProfileCursorHandle getCustomMetricInputFields(const KvbString& key);
    [[nodiscard]] ProfileCursorHandle getBusinessRules(int tableId);
    /// The rows that violate a rule, as many of the first ones as the run has kept, from the one with the index `first`
    /// on, which counts from 0. Three columns of bookkeeping (number of the row in its table, id of the rule, index)
    /// come first, then the fields of the table's key and, if `withInputs`, the fields that the condition reads.
    [[nodiscard]] ProfileCursorHandle getBusinessRuleRowLog(int ruleId, int first, bool withInputs);

    // Alerts.
    [[nodiscard]] ProfileCursorHandle getAlerts();
    [[nodiscard]] ProfileCursorHandle getAlertProperties(int alertId);

    // Several changes as one: until keepChanges() nobody else sees any of them, and this session sees all. Other
    // writers wait meanwhile, so nobody should be asked anything in between. When one of them fails, keepChanges()
    // fails too and keeps none. Runs cannot be deleted in between. What is neither kept nor dropped is dropped with the
    // session.
    bool beginChanges();
    bool keepChanges();
    void dropChanges();

    // Notes. `kind` is 'T' for a table, 'C' for a collection; `order` 1 newest first, else oldest first.
    [[nodiscard]] ProfileCursorHandle getTableNotes(int ownerId, char kind, int order);
    [[nodiscard]] ProfileCursorHandle getFieldNotes(int fieldId, int order);
    [[nodiscard]] ProfileCursorHandle getNoteCategories();
    /// `categoryId` -1 for none. The new note's time is now. Texts and names: base/NoteText.h.
    bool createNewTableNote(int ownerId, char kind, int categoryId, const KvbString& user, const KvbString& text);
    bool createNewFieldNote(int fieldId, int categoryId, const KvbString& user, const KvbString& text);
    /// The note keeps its user and its time.
    bool editTableNote(int noteId, int categoryId, const KvbString& text);
    bool editFieldNote(int noteId, int categoryId, const KvbString& text);
    bool deleteTableNote(int noteId);
    bool deleteFieldNote(int noteId);
    bool createNewNoteCategory(const KvbString& name);
    bool editNoteCategory(int categoryId, const KvbString& name);
    /// Its notes stay, without a category.
    bool deleteNoteCategory(int categoryId);

    // Charts. `chartId` is -1 to make a new one and then receives its id.
    [[nodiscard]] ProfileCursorHandle getTableCharts(int tableId);
    [[nodiscard]] ProfileCursorHandle getCategoryCharts(int category);
    [[nodiscard]] ProfileCursorHandle getChartProperties(int chartId);
    bool createEditTableChart(int& chartId, int tableId, const KvbString& name, const KvbString& description);
    bool createEditCategoryChart(int& chartId, int category, const KvbString& name, const KvbString& description);
    bool deleteChart(int chartId);
    bool clearChartProperties(int chartId);
    bool addChartProperty(int chartId, const KvbString& name, int position, const KvbString& value);

    // Primary key / foreign key analysis of the current run. Where it does not have the field, the two cursors are
    // those of the latest run that does.
    [[nodiscard]] ProfileCursorHandle getPKFKAnalysis(int fieldId);
    [[nodiscard]] ProfileCursorHandle getPKFKAnalysisOutliers(int fieldId, int otherFieldId);
    bool generatePKFKAnalysis(int fieldId, int otherFieldId);
    /// True as well when there is none.
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

    /// Who answers when a database wants a user and a password for a drill-down; the environment alone until then.
    void setSourceCredentials(source::AskCredentials ask);

    // Drill-down to the rows of the source, with all columns of the table, in the source's order. Of a filtered table
    // only those that pass its condition. The rows are read from the source as it is now: a cursor's getWarning() says
    // when it changed since the run. `sink` may be null; it is told of progress within next(), can stop the reading,
    // and must outlive the cursor. The cursors do not need the repository, and stay valid when the viewer closes.
    /// The rows with a value, or, if `isPattern`, those whose value has this character pattern, given in full. A null
    /// `value` stands for the rows in which the field is null. An empty one stands for empty texts; when the run has
    /// none in this field, for null too, since a list of values that was read as plain texts shows both alike.
    /// `patterns` is not looked at: patterns are formed as the run formed them.
    [[nodiscard]] PrViewerDrillCursorHandle drillDown(int fieldId, const KvbString& value, bool isPattern,
                                                      PrViewDisplayMessage* sink, OrvintaPatternGen* patterns);
    /// The rows with a value, from the one with the index `first` on, which counts from 0. Null as above.
    [[nodiscard]] ProfileCursorHandle drillDownMatch(int fieldId, const KvbString& value, PrViewDisplayMessage* sink,
                                                     int first);
    /// How often the run has counted the value or pattern that drillDown would look for, 0 when it does not know it; -1
    /// on failure, and kSampleOnly when it counted a sample of the rows, which says nothing of all. What the source has
    /// now is compared with it: access/SourceChange.h.
    static constexpr std::int64_t kSampleOnly = -2;
    [[nodiscard]] std::int64_t getDrillDownCount(int fieldId, const KvbString& value, bool isPattern);

    /// The file for want of which the last drill-down failed; nothing when it did not, or failed otherwise.
    [[nodiscard]] std::optional<MissingFile> getMissingFile() const;
    /// Says where a file is that runs read at `oldPath`; a folder stands for the file of that name in it. Drill-downs
    /// of this session read it there, and so do later sessions if the file has the size that a run noted: the
    /// repository keeps the place then. `remark` says why it does not. Fails when no run has read `oldPath` or when
    /// there is no file at `newPath`.
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
