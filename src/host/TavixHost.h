#pragma once

#include "base/ColorScheme.h"
#include "base/Messages.h"
#include "base/Result.h"
#include "base/SettingsStore.h"
#include "host/NativeMessage.h"
#include "host/TavixEvent.h"
#include "host/TavixRecords.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavix {
class CTavixApp;
class CTavixView;
} // namespace tavix

namespace Veldra::Solenne::Tavix {

/// The viewer's interface to a desktop shell of any toolkit. All calls must be made on the thread that started Qt (see
/// TavixEventLoop). Without a window, every operation behaves as without a report.
///
/// In a handler, and while a dialog is open, a shell may query the host, resize the window, and destroy it: Dispose,
/// DestroyWindowCore and the destructor close the dialogs and return. Functions of the view that are still on the stack
/// continue with an empty view, which is destroyed when they have returned. Operations that would change the report
/// while a dialog is open are refused with a message: see IsDialogOpen.
class TavixHost {
  public:
    /// Uses the user's settings file, and shows messages in boxes over the viewer.
    TavixHost();
    /// Passes messages to the shell; `messages` must outlive the host.
    explicit TavixHost(tavix::Messages& messages);
    /// Uses the caller's settings.
    TavixHost(tavix::Messages& messages, std::unique_ptr<tavix::SettingsStore> settings);
    ~TavixHost();
    TavixHost(const TavixHost&) = delete;
    TavixHost& operator=(const TavixHost&) = delete;

    /// Raised once for each window, after it was created.
    TavixEvent<TavixHost&> OnTavixWindowCreated;
    /// Handlers receive a callback that asks the user which runs to delete, and deletes them. Without a handler the
    /// command is disabled.
    TavixEvent<const std::function<void()>&> DeleteHistoryEvent;
    /// Handlers fill in the empty record.
    TavixEvent<TavixAuthSvrInfo&> GetAuthSvrCreds;
    /// The list of runs or the current run may have changed.
    TavixEvent<TavixHost&> RunsChangedEvent;
    /// Alerts may have changed while the current run stayed; after RunsChangedEvent they may be others anyway.
    TavixEvent<TavixHost&> AlertsChangedEvent;
    /// A dialog was opened (true), or the last open one was closed and the call that opened it has returned (false).
    /// Raised from the event loop.
    TavixEvent<TavixHost&, bool> DialogEvent;
    /// The user has chosen other colours in the Options dialog: the shell gives them to its windows and the viewer's.
    /// The dialog offers the choice only while there is a handler, since the viewer never changes the colours of a
    /// program that it is a part of.
    TavixEvent<TavixHost&, tavix::ColorScheme> ColorSchemeEvent;

    /// Whether a dialog, a message or a progress window is open. Until it is closed, LoadReportForJob, SetCurrentRun,
    /// SelectTable, AddCurrentFieldToCollection and the callback of DeleteHistoryEvent show a message and fail, and
    /// commands are disabled.
    [[nodiscard]] bool IsDialogOpen() const;

    /// Creates the view as a child of `parent`, fills and shows it, and returns its window, which the shell may move
    /// and resize. Returns 0 when `parent` is not a window, or when the windowing system cannot embed windows of other
    /// toolkits. A host has one window at a time: an earlier one is destroyed.
    [[nodiscard]] NativeWindow BuildWindowCore(NativeWindow parent);
    /// Does nothing when the window is not this host's. The view is destroyed by itself when the shell destroys
    /// `parent` first.
    void DestroyWindowCore(NativeWindow window);
    /// Destroys the view.
    void Dispose();
    /// Whether the message was handled; see NativeMessageId.
    bool WndProc(NativeMessage& message);

    /// False when the viewer has no handler for the command. While a dialog is open, a command with a handler is
    /// refused with a message.
    bool ExecuteCommand(int commandId);
    [[nodiscard]] TavixCommandState ExecuteUpdateUICommand(int commandId) const;
    [[nodiscard]] static std::vector<TavixCommandInfo> GetCommands();

    /// Opens a session of its own. Returns false on any failure and for null; never throws or shows a message.
    [[nodiscard]] static bool ReportExists(int jobId, const TavixConnection* connection);
    /// All reports of the repository, read in a session of its own.
    [[nodiscard]] static tavix::Result<std::vector<TavixReportInfo>> GetReports(const TavixConnection& connection);
    /// After a failure, which is shown, the view is empty. Returns false and changes nothing for null. The connection
    /// is only used during the call.
    bool LoadReportForJob(const std::string& text, int jobId, const TavixConnection* connection);
    /// In the order of the repository; empty without a report.
    [[nodiscard]] std::vector<TavixRunInfo> GetJobRuns() const;
    /// The job of the report that is shown; -1 without one. The viewer may have opened another report than the shell:
    /// that of an alert. RunsChangedEvent is then raised.
    [[nodiscard]] int GetReportJob() const;
    /// -1 without a report.
    [[nodiscard]] int GetCurrentRun() const;
    /// Returns true and does nothing when the run is current already. After a failure, which is shown, the current run
    /// stays.
    bool SetCurrentRun(int runId);
    /// False unless `connectionType` is exactly "ODBC" or "KVTK" and the table exists.
    bool SelectTable(const std::string& dataSource, const std::string& connectionType, const std::string& qualifier1,
                     const std::string& qualifier2, const std::string& table);
    /// Adds the selected field. Returns 1, or 0 when no field is selected or, after a message, on failure.
    int AddCurrentFieldToCollection(int collectionId);

    /// Whether the view or a control in it has the keyboard focus.
    [[nodiscard]] bool HasFocus() const;
    /// Gives the keyboard to the tree of the navigator page that is showing.
    void SetInternalFocus();
    /// Gives the keyboard to the last tab stop for FocusNavigation::Last, else to the first; false without a window.
    bool TabInto(FocusNavigation request);
    /// The site must outlive the host or be replaced by null before. Without one, Tab cycles within the viewer.
    void SetKeyboardSite(TavixKeyboardSite* site);
    /// For a shell that receives the keys before the viewer: Tab on the last tab stop and Shift+Tab on the first go to
    /// the keyboard site, any other key-down to the focused control. Returns whether the message was handled.
    bool TranslateAccelerator(const NativeMessage& message);
    /// Passes a key or character message to the focused control. Returns whether it was handled.
    bool ConvertMessage(const NativeMessage& message);

    /// The separate windows that are open (detached views, drill-through), for a Window menu, in the order in which
    /// they were opened.
    [[nodiscard]] std::vector<TavixWindowInfo> GetWindows() const;
    /// Brings the window to the front; false when it has been closed.
    bool RaiseWindow(int id);
    void CloseWindows();

    /// Raises DeleteHistoryEvent.
    void DeleteHistory();
    /// Raises GetAuthSvrCreds with an empty record and keeps what the handlers filled in. The viewer does the same when
    /// it opens a repository server whose connection string lacks user or password.
    void GetAuthSvrCredentials();

    /// With the path of the report's folder before it, "Shop/Europe/Sales"; "Untitled" without a report.
    [[nodiscard]] std::string GetReportTitle() const;
    [[nodiscard]] bool HasReport() const;
    /// How many alerts the current run raises, for a status line: "2 errors, 1 warning", "no alert raised, 1 muted". ""
    /// without a report or alerts.
    [[nodiscard]] std::string GetAlertsText() const;
    /// The viewer's settings, in which a shell may keep a section of its own.
    [[nodiscard]] tavix::SettingsStore& GetSettings() const;
    /// The user's choice whether a shell starts with its welcome page or reopens the last repository.
    [[nodiscard]] bool ShowsWelcomeAtStart() const;
    /// The colours that the user has chosen, for a shell to apply at its start.
    [[nodiscard]] tavix::ColorScheme GetColorScheme() const;
    /// The setting `UseVault`: the folder whose repositories a shell's welcome page lists beside the recent ones; ""
    /// for none.
    [[nodiscard]] std::string GetVault() const;
    /// Why the settings could not be read, to be shown once; "" when they are in order.
    [[nodiscard]] const std::string& GetStartProblem() const;

  private:
    friend class TavixQtWindow;
    struct Window;

    [[nodiscard]] tavix::CTavixView* View() const;
    void AddView(tavix::CTavixView& view);
    [[nodiscard]] tavix::Messages& GetMessages() const;
    [[nodiscard]] std::unique_ptr<Window> MakeWindow();
    [[nodiscard]] bool RefusesNow() const;
    /// Brings the open dialog to the front; false when there is none.
    bool FocusDialog() const;
    bool TellSiteAtLastStop(const NativeMessage& message);

    std::shared_ptr<tavix::CTavixApp> m_app;
    tavix::Messages* m_messages; ///< the shell's; null for our own message boxes
    std::unique_ptr<Window> m_window;
};

} // namespace Veldra::Solenne::Tavix
