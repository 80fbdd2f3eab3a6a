#pragma once

#include "access/PrViewer.h"
#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "doc/CRefreshItem.h"
#include "doc/FieldFilters.h"
#include "doc/ItemCode.h"
#include "doc/SourceLogins.h"
#include "report/ReportSelection.h"
#include "report/RunInfo.h"
#include "settings/MetricDisplay.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

/// The filter that holds for the whole report.
struct ReportFilterState {
    std::array<std::string, 8> texts;
    int first = -1;
    int second = -1;

    bool operator==(const ReportFilterState&) const = default;
};

/// The frame that shows the document, as the document sees it.
class DocumentFrame {
  public:
    virtual ~DocumentFrame() = default;
    /// While set, hint 6 is not passed on.
    virtual void SetLoading(bool loading) = 0;
    virtual void Broadcast(RefreshHint hint) = 0;
};

/// The pane that keeps the task list, as the document sees it.
class TaskListKeeper {
  public:
    virtual ~TaskListKeeper() = default;
    /// False when no task list can be made.
    virtual bool Create() = 0;
    virtual void Save() = 0;
    /// Brings back what Save kept for the report that is open; true when nothing was kept for it.
    virtual bool Restore() = 0;
    /// The tasks stored with the report; may throw GenException while reading.
    virtual void Load(ProfileCursor& tasks) = 0;
};

/// What the delete-history dialog answers.
struct HistoryDeletion {
    int bound = -1;    ///< runs up to this id are deleted
    int runAfter = -1; ///< the run to show when the current one is among them
};

/// The names of the collections that hold a field, by field id, each list in the library's order.
using CollectionsByField = std::map<int, std::vector<std::string>>;

/// The one document of the viewer: the repository session, the current report and run, and what holds for the whole
/// report. Failures are shown through the message seam and leave everything as it was.
class CTavixDoc {
  public:
    /// All references must outlive the document.
    CTavixDoc(DocumentFrame& frame, SettingsStore& settings, Messages& messages);
    ~CTavixDoc();
    CTavixDoc(const CTavixDoc&) = delete;
    CTavixDoc& operator=(const CTavixDoc&) = delete;

    /// Optional; must outlive the document or be taken back with null.
    void SetTaskListKeeper(TaskListKeeper* keeper) { m_tasks = keeper; }

    /// Opens a report in place of the present one. When it fails, after a message, the document has no report.
    bool OpenReport(const KvbString& connection, int jobId);
    /// No report, no session, the title "Untitled"; broadcasts nothing.
    void Clear();
    /// True with nothing done when `runId` is current already.
    bool SetCurrentJob(int runId);
    /// `ask` shows the delete-history dialog; false means that it was not closed with OK. When the report that was
    /// asked about is not the open one any more, nothing is deleted and a message says so.
    void DeleteHistory(const std::function<bool(HistoryDeletion&)>& ask);
    /// After the Options dialog was closed with OK: keeps `metrics` as the display list, writes it to the settings and
    /// broadcasts hint 5. `saved` is how writing the other options went: there is one message for both.
    void ApplyOptions(std::vector<MetricDisplay> metrics, const Status& saved = {});
    /// Called once, shortly after a report was loaded: false when the task list could not be restored.
    bool PostLoadCheck();

    /// The runs of the report as the library lists them; nothing, after a message, when they cannot be read.
    [[nodiscard]] std::optional<std::vector<RunInfo>> GetRuns() const;

    /// The collections of one table's fields: one query for a table, kept until the collections or the run change. A
    /// table whose collections cannot be read has none, and is asked for again. Valid until the next non-const call.
    [[nodiscard]] const CollectionsByField& GetCollectionsOfTable(int tableId);
    /// The collections of one field of that table; none for a field that is in none.
    [[nodiscard]] const std::vector<std::string>& GetCollectionsOfField(int tableId, int fieldId);
    /// To be called when collections have changed: forgets those that are kept and broadcasts hint 1.
    void CollectionsRefreshed();

    [[nodiscard]] bool HasReport() const { return m_jobId != -1; }
    [[nodiscard]] int GetJobId() const { return m_jobId; }
    /// The current run; -1 without a report.
    [[nodiscard]] int GetCurrentJob() const { return m_currentRun; }
    [[nodiscard]] int GetRunCount() const { return m_runCount; }
    /// The report's name; "Untitled" without a report.
    [[nodiscard]] const std::string& GetTitle() const { return m_title; }
    /// The report text that the shell gave.
    [[nodiscard]] const std::string& GetText() const { return m_text; }
    void SetText(std::string text) { m_text = std::move(text); }
    /// Path of the report's folder; "" when it lies in none.
    [[nodiscard]] const std::string& GetFolderPath() const { return m_folderPath; }
    [[nodiscard]] const std::vector<MetricDisplay>& GetMetrics() const { return m_metrics; }
    /// The ids of the metrics that are shown, in the user's order.
    [[nodiscard]] std::vector<int> ShownMetrics() const { return shownMetrics(m_metrics); }
    [[nodiscard]] const ReportFilterState& GetFilterState() const { return m_filter; }
    void SetFilterState(ReportFilterState state) { m_filter = std::move(state); }
    /// The filters of the report's distributions; kept over its runs.
    [[nodiscard]] FieldFilters& GetFieldFilters() { return m_fieldFilters; }
    [[nodiscard]] const FieldFilters& GetFieldFilters() const { return m_fieldFilters; }
    /// The tab that was open last in views of that kind on the tables page; -1 when none was.
    [[nodiscard]] int GetTab(ReportPaneKind view) const { return TabOf(view, NavigatorPage::Tables); }
    /// The same for the collections page.
    [[nodiscard]] int GetCollectionTab(ReportPaneKind view) const { return TabOf(view, NavigatorPage::Collections); }
    void SetTab(ReportPaneKind view, NavigatorPage mode, int tabIndex) { m_tabs[{view, mode}] = tabIndex; }
    /// Who the user is to the databases that drill-through reads; forgotten with the report.
    [[nodiscard]] SourceLogins& GetSourceLogins() { return m_logins; }
    /// The session; null without a report.
    /// Shows what a glance tells of damage in the current run, if anything. To be called when the report is shown.
    void WarnOfDamage() const;
    [[nodiscard]] PrViewer* GetViewer() const { return m_viewer.get(); }
    /// The same, for functions under which another report may be opened: it stays open while they hold it, and tells
    /// them afterwards whether it is still that of the report.
    [[nodiscard]] std::shared_ptr<PrViewer> GetSession() const { return m_viewer; }
    [[nodiscard]] SettingsStore& GetSettings() const { return m_settings; }
    [[nodiscard]] Messages& GetMessages() const { return m_messages; }

  private:
    [[nodiscard]] int TabOf(ReportPaneKind view, NavigatorPage mode) const;
    void Warn(std::string_view leadIn, std::string_view libraryText) const;
    /// Why it failed, as a whole message; nothing when it succeeded.
    std::optional<std::string> SetUp(PrViewer& viewer, int jobId);
    void LoadMetricDisplayList(const PrViewer& viewer);
    void ReloadTaskList();
    void RefreshRunCount();
    void EnterRun(int runId);

    DocumentFrame& m_frame;
    SettingsStore& m_settings;
    Messages& m_messages;
    TaskListKeeper* m_tasks = nullptr;
    SourceLogins m_logins; ///< before the session, which asks it
    std::shared_ptr<PrViewer> m_viewer;
    int m_jobId = -1;
    int m_currentRun = -1;
    int m_runCount = 0;
    std::string m_title;
    std::string m_text;
    std::string m_folderPath;
    std::vector<MetricDisplay> m_metrics;
    ReportFilterState m_filter;
    FieldFilters m_fieldFilters;
    std::map<std::pair<ReportPaneKind, NavigatorPage>, int> m_tabs; ///< the tab that was open last
    std::map<int, CollectionsByField> m_collections;                ///< by table id
};

} // namespace tavix
