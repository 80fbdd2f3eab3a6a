#pragma once

#include "access/PrViewer.h"
#include "base/Messages.h"
#include "base/Result.h"
#include "base/SettingsStore.h"
#include "doc/CRefreshItem.h"
#include "doc/FieldFilters.h"
#include "doc/ItemCode.h"
#include "doc/SourceLogins.h"
#include "report/AlertStates.h"
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

/// The interface of the frame to its document.
class DocumentFrame {
  public:
    virtual ~DocumentFrame() = default;
    /// While set, hint 6 is not passed on.
    virtual void SetLoading(bool loading) = 0;
    virtual void Broadcast(RefreshHint hint) = 0;
};

/// The interface of the pane that keeps the task list to the document.
class TaskListKeeper {
  public:
    virtual ~TaskListKeeper() = default;
    /// False on failure.
    virtual bool Create() = 0;
    virtual void Save() = 0;
    /// Brings back what Save kept for the report that is open; true when nothing was kept for it.
    virtual bool Restore() = 0;
    /// The tasks stored with the report; may throw GenException while reading.
    virtual void Load(ProfileCursor& tasks) = 0;
};

/// The user's choice in the delete-history dialog.
struct HistoryDeletion {
    int bound = -1;    ///< runs up to this id are deleted
    int runAfter = -1; ///< the run to show when the current one is among them
};

/// The runs that the user wants to compare; -1 where the choice is left to the viewer: the run that is shown, and the
/// one before it.
struct ComparedRuns {
    int since = -1;
    int until = -1;

    bool operator==(const ComparedRuns&) const = default;
};

/// The names of the collections that hold a field, by field id, each list in the library's order.
using CollectionsByField = std::map<int, std::vector<std::string>>;

/// The one document of the viewer: the repository session, the current report and run, and the state that belongs to
/// the report as a whole. A failure is shown as a message and changes nothing.
class CTavixDoc {
  public:
    /// All references must outlive the document.
    CTavixDoc(DocumentFrame& frame, SettingsStore& settings, Messages& messages);
    ~CTavixDoc();
    CTavixDoc(const CTavixDoc&) = delete;
    CTavixDoc& operator=(const CTavixDoc&) = delete;

    /// Optional. The keeper must outlive the document or be replaced by null before.
    void SetTaskListKeeper(TaskListKeeper* keeper) { m_tasks = keeper; }

    /// Opens a report in place of the current one. After a failure, which is shown, the document has no report.
    bool OpenReport(const KvbString& connection, int jobId);
    /// Closes report and session; the title is "Untitled" again. Broadcasts nothing.
    void Clear();
    /// Returns true and does nothing when `runId` is current already.
    bool SetCurrentJob(int runId);
    /// `ask` shows the delete-history dialog and returns whether it was closed with OK. If another report has been
    /// opened meanwhile, nothing is deleted and a message says so.
    void DeleteHistory(const std::function<bool(HistoryDeletion&)>& ask);
    /// After the Options dialog was closed with OK: keeps `metrics` as the display list, writes it to the settings and
    /// broadcasts hint 5. `saved` is the result of writing the other options; one message reports both failures.
    void ApplyOptions(std::vector<MetricDisplay> metrics, const Status& saved = {});
    /// To be called once, shortly after a report was loaded. False when the task list could not be restored.
    bool PostLoadCheck();

    /// The runs of the report in the library's order; nothing, after a message, when they cannot be read.
    [[nodiscard]] std::optional<std::vector<RunInfo>> GetRuns() const;

    /// A further session with the report for a run of its own; the current run and other panes do not notice it.
    [[nodiscard]] Result<std::shared_ptr<PrViewer>> OpenRun(int runId) const;
    [[nodiscard]] const ComparedRuns& GetComparedRuns() const { return m_compared; }
    void SetComparedRuns(const ComparedRuns& runs) { m_compared = runs; }

    /// The collections of one table's fields, read by one query and cached until the collections or the run change.
    /// When they cannot be read the map is empty, and the next call tries again. Valid until the next non-const call.
    [[nodiscard]] const CollectionsByField& GetCollectionsOfTable(int tableId);
    /// The collections of one field of that table; none for a field that is in none.
    [[nodiscard]] const std::vector<std::string>& GetCollectionsOfField(int tableId, int fieldId);
    /// To be called when collections have changed: clears the cache and broadcasts hint 1.
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
    /// Path of the report's folder; "" when it is in none.
    [[nodiscard]] const std::string& GetFolderPath() const { return m_folderPath; }
    [[nodiscard]] const std::vector<MetricDisplay>& GetMetrics() const { return m_metrics; }
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
    /// The alerts of the report, judged for the current run, as readAlertStates() orders them. They are read when they
    /// are first asked for and kept until they may have changed. None without a report, or if they cannot be read.
    [[nodiscard]] const std::vector<AlertState>& GetAlerts();
    /// Why GetAlerts() could not read the alerts; "" if it could.
    [[nodiscard]] const std::string& GetAlertsError();
    /// How many alerts are raised, for a status line: "2 errors, 1 warning"; "" without alerts.
    [[nodiscard]] std::string GetAlertsText();
    /// To be called before `hint` is passed on to the panes, so that none of them reads what it makes stale.
    void Notice(RefreshHint hint);
    /// The user's logins to the databases that drill-through reads; forgotten when the report is closed.
    [[nodiscard]] SourceLogins& GetSourceLogins() { return m_logins; }
    /// Warns the user when a quick check finds the current run damaged. To be called when the report is shown.
    void WarnOfDamage() const;
    /// The session; null without a report.
    [[nodiscard]] PrViewer* GetViewer() const { return m_viewer.get(); }
    /// The session for a caller during whose work another report may be opened: it stays open as long as the caller
    /// holds it, and comparing it with GetViewer() afterwards shows whether the report is still the same.
    [[nodiscard]] std::shared_ptr<PrViewer> GetSession() const { return m_viewer; }
    [[nodiscard]] SettingsStore& GetSettings() const { return m_settings; }
    [[nodiscard]] Messages& GetMessages() const { return m_messages; }

  private:
    [[nodiscard]] int TabOf(ReportPaneKind view, NavigatorPage mode) const;
    void Warn(std::string_view leadIn, std::string_view libraryText) const;
    /// The complete error message; nothing on success.
    std::optional<std::string> SetUp(PrViewer& viewer, int jobId);
    void LoadMetricDisplayList(const PrViewer& viewer);
    void ReloadTaskList();
    void RefreshRunCount();
    void EnterRun(int runId);
    void ReadAlerts();
    void ForgetAlerts();

    DocumentFrame& m_frame;
    SettingsStore& m_settings;
    Messages& m_messages;
    TaskListKeeper* m_tasks = nullptr;
    SourceLogins m_logins; ///< declared before the session, which uses it
    std::shared_ptr<PrViewer> m_viewer;
    KvbString m_connection;
    int m_jobId = -1;
    int m_currentRun = -1;
    int m_runCount = 0;
    std::string m_title;
    std::string m_text;
    std::string m_folderPath;
    std::vector<MetricDisplay> m_metrics;
    ReportFilterState m_filter;
    FieldFilters m_fieldFilters;
    ComparedRuns m_compared;
    std::optional<std::vector<AlertState>> m_alerts; ///< nothing until they are asked for
    std::string m_alertsError;
    std::map<std::pair<ReportPaneKind, NavigatorPage>, int> m_tabs; ///< the tab that was open last
    std::map<int, CollectionsByField> m_collections;                ///< by table id
};

} // namespace tavix
