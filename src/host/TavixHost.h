#pragma once

#include "base/KvbString.h"
#include "base/LibraryDate.h"
#include "base/Messages.h"
#include "base/Result.h"
#include "base/SettingsStore.h"
#include "doc/CommandIds.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace tavix {
class CTavixApp;
class CTavixView;
} // namespace tavix

namespace Veldra::Solenne::Tavix {

using tavix::CommandId;

/// One run of a profiling job.
struct TavixRunInfo {
    int ID = 0;
    std::string Description;
    std::string Date; ///< the locale's date and time form
    tavix::LibraryDate DateObject = 0;

    bool operator==(const TavixRunInfo&) const = default;
};

/// One report of a repository: a job with its runs.
struct TavixReportInfo {
    int JobID = 0;
    std::string Name;
    std::string Description;
    int RunCount = 0;
    std::string LastRun; ///< the locale's date and time form; empty without a run

    bool operator==(const TavixReportInfo&) const = default;
};

/// A command of the viewer, for menus.
struct TavixCommandInfo {
    int Id = 0;
    std::string Text;
    std::string StatusText;
};

struct TavixCommandState {
    bool Handled = false;
    bool Enabled = false;
    bool Checked = false;

    bool operator==(const TavixCommandState&) const = default;
};

/// Where a repository is; the shell's object.
class TavixConnection {
  public:
    virtual ~TavixConnection() = default;
    [[nodiscard]] virtual tavix::KvbString GetConnectionString() const = 0;
};

/// The viewer as a desktop shell sees it. All calls belong to the thread of the user interface. The window is handed
/// out as a QWidget, so that this header serves shells that are built with Qt.
class TavixHost {
  public:
    using WindowCreatedHandler = std::function<void(TavixHost&)>;
    /// Receives a callback that performs the deletion.
    using DeleteHistoryHandler = std::function<void(const std::function<void()>& perform)>;
    using RunsChangedHandler = std::function<void(TavixHost&)>;

    /// Settings from the user's settings file. The messages must outlive the host.
    explicit TavixHost(tavix::Messages& messages);
    /// Settings in a store of the caller's.
    TavixHost(tavix::Messages& messages, std::unique_ptr<tavix::SettingsStore> settings);
    ~TavixHost();
    TavixHost(const TavixHost&) = delete;
    TavixHost& operator=(const TavixHost&) = delete;

    /// Handlers are called in the order in which they were attached.
    std::vector<WindowCreatedHandler> OnTavixWindowCreated;
    std::vector<DeleteHistoryHandler> DeleteHistoryEvent;
    /// The list of runs or the current run may be another.
    std::vector<RunsChangedHandler> RunsChangedEvent;

    /// The view, a child of `parent` and owned by it. A host has one window at a time.
    QWidget* BuildWindowCore(QWidget* parent);
    void DestroyWindowCore();

    /// Never throws and never shows a message: whatever goes wrong is false. Null is false.
    [[nodiscard]] static bool ReportExists(int jobId, const TavixConnection* connection);
    /// Every report of the repository, in a session of its own.
    [[nodiscard]] static tavix::Result<std::vector<TavixReportInfo>> GetReports(const TavixConnection& connection);
    /// False, after a message, leaves the view empty. Null is false and touches nothing.
    bool LoadReportForJob(const std::string& text, int jobId, const TavixConnection* connection);
    /// In the order of the repository; empty without a report.
    [[nodiscard]] std::vector<TavixRunInfo> GetJobRuns() const;
    /// -1 without a report.
    [[nodiscard]] int GetCurrentRun() const;
    bool SetCurrentRun(int runId);
    /// `connectionType` is exactly "ODBC" or "KVTK", else false.
    bool SelectTable(const std::string& dataSource, const std::string& connectionType, const std::string& qualifier1,
                     const std::string& qualifier2, const std::string& table);
    /// Raises DeleteHistoryEvent.
    void DeleteHistory();
    /// Focuses the tree of the navigator page that is showing.
    void SetInternalFocus();

    [[nodiscard]] static std::vector<TavixCommandInfo> GetCommands();
    /// False when nobody handles the command.
    bool ExecuteCommand(int commandId);
    [[nodiscard]] TavixCommandState ExecuteUpdateUICommand(int commandId) const;

    /// "Untitled" without a report.
    [[nodiscard]] std::string GetReportTitle() const;
    [[nodiscard]] bool HasReport() const;
    /// The viewer's settings, in which a shell may keep a section of its own.
    [[nodiscard]] tavix::SettingsStore& GetSettings() const;
    /// The user's choice whether a shell begins with its welcome page or with what was open last.
    [[nodiscard]] bool ShowsWelcomeAtStart() const;
    /// What kept the settings from being read, to be shown once; "" when they are in order.
    [[nodiscard]] const std::string& GetStartProblem() const;

  private:
    std::unique_ptr<tavix::CTavixApp> m_app;
    tavix::Messages& m_messages;
    struct Window;
    std::unique_ptr<Window> m_window;
    [[nodiscard]] tavix::CTavixView* View() const;
};

} // namespace Veldra::Solenne::Tavix
