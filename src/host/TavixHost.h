#pragma once

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

/// The viewer as a desktop shell sees it, whatever the shell's toolkit. All calls belong to the one thread on which the
/// toolkit of the viewer was started (TavixEventLoop). Before a window is built and after it is gone every operation
/// answers as it does without a report.
///
/// From within a handler, and while a dialog is open, a shell may ask, size the window, and end it: Dispose,
/// DestroyWindowCore and the destructor close the dialogs and return; what is below them on the stack goes on with an
/// empty view, which is destroyed when nothing uses it any more. Operations that would change the report under an open
/// dialog are refused with a message: see IsDialogOpen.
class TavixHost {
  public:
    /// Settings from the user's settings file, messages as boxes over the viewer.
    TavixHost();
    /// Messages go to the shell; they must outlive the host.
    explicit TavixHost(tavix::Messages& messages);
    /// Settings in a store of the caller's.
    TavixHost(tavix::Messages& messages, std::unique_ptr<tavix::SettingsStore> settings);
    ~TavixHost();
    TavixHost(const TavixHost&) = delete;
    TavixHost& operator=(const TavixHost&) = delete;

    /// Once for each window, after it exists.
    TavixEvent<TavixHost&> OnTavixWindowCreated;
    /// Handlers receive a callback that asks the user which runs to delete, and deletes them. A shell without a handler
    /// does not allow it: the command is disabled then.
    TavixEvent<const std::function<void()>&> DeleteHistoryEvent;
    /// Handlers fill in the empty record.
    TavixEvent<TavixAuthSvrInfo&> GetAuthSvrCreds;
    /// The list of runs or the current run may be another.
    TavixEvent<TavixHost&> RunsChangedEvent;
    /// A dialog was opened (true), or the last one that was open is closed and the call that opened it has returned
    /// (false). Raised from the event loop.
    TavixEvent<TavixHost&, bool> DialogEvent;

    /// A dialog, a message or the progress of a reading is on the screen. Until it is closed LoadReportForJob,
    /// SetCurrentRun, SelectTable, AddCurrentFieldToCollection and the callback of DeleteHistoryEvent are refused after
    /// a message, and commands are disabled; the report stays as it is.
    [[nodiscard]] bool IsDialogOpen() const;

    /// Makes the view as a child of `parent`, fills it, shows it, and answers its window, which the shell may move and
    /// resize. 0 when `parent` is no window, or on a windowing system that cannot put a window into one of another
    /// toolkit. A host has one window at a time: the one before is destroyed.
    [[nodiscard]] NativeWindow BuildWindowCore(NativeWindow parent);
    /// Does nothing when the window is not this host's. When the shell destroys `parent` first, the view goes by
    /// itself.
    void DestroyWindowCore(NativeWindow window);
    /// Destroys the view, whatever its window is.
    void Dispose();
    /// Whether the message was handled; see NativeMessageId.
    bool WndProc(NativeMessage& message);

    /// False when nobody handles the command. While a dialog is open a command that somebody handles is refused with a
    /// message.
    bool ExecuteCommand(int commandId);
    [[nodiscard]] TavixCommandState ExecuteUpdateUICommand(int commandId) const;
    [[nodiscard]] static std::vector<TavixCommandInfo> GetCommands();

    /// In a session of its own. Never throws and never shows a message: whatever goes wrong is false. Null is false.
    [[nodiscard]] static bool ReportExists(int jobId, const TavixConnection* connection);
    /// Every report of the repository, in a session of its own.
    [[nodiscard]] static tavix::Result<std::vector<TavixReportInfo>> GetReports(const TavixConnection& connection);
    /// False, after a message, leaves the view empty. Null is false and touches nothing. The connection is asked during
    /// the call and not kept.
    bool LoadReportForJob(const std::string& text, int jobId, const TavixConnection* connection);
    /// In the order of the repository; empty without a report.
    [[nodiscard]] std::vector<TavixRunInfo> GetJobRuns() const;
    /// -1 without a report.
    [[nodiscard]] int GetCurrentRun() const;
    /// True with nothing done when the run is current already; false, after a message, leaves the run as it was.
    bool SetCurrentRun(int runId);
    /// `connectionType` is exactly "ODBC" or "KVTK", else false.
    bool SelectTable(const std::string& dataSource, const std::string& connectionType, const std::string& qualifier1,
                     const std::string& qualifier2, const std::string& table);
    /// Adds the field that is selected; 0 when none is, or, after a message, when it could not be added.
    int AddCurrentFieldToCollection(int collectionId);

    /// Whether the keyboard is with the view or a control in it.
    [[nodiscard]] bool HasFocus() const;
    /// Gives the keyboard to the tree of the navigator page that is showing.
    void SetInternalFocus();
    /// Gives the keyboard to the last tab stop for FocusNavigation::Last, else to the first; false without a window.
    bool TabInto(FocusNavigation request);
    /// Null for none; must outlive the host or be taken back. Without one Tab goes round within the viewer.
    void SetKeyboardSite(TavixKeyboardSite* site);
    /// For a shell that sees the keys before the viewer does: Tab on the last tab stop and Shift+Tab on the first go to
    /// the keyboard site, any other key-down to the control that has the keyboard. Whether it was handled.
    bool TranslateAccelerator(const NativeMessage& message);
    /// Hands a key or character message to the control that has the keyboard. Whether it was handled.
    bool ConvertMessage(const NativeMessage& message);

    /// Raises DeleteHistoryEvent.
    void DeleteHistory();
    /// Raises GetAuthSvrCreds with an empty record and keeps what the handlers filled in. The viewer does the same when
    /// it opens a repository server whose connection string lacks user or password.
    void GetAuthSvrCredentials();

    /// With the path of the report's folder before it, "Shop/Europe/Sales"; "Untitled" without a report.
    [[nodiscard]] std::string GetReportTitle() const;
    [[nodiscard]] bool HasReport() const;
    /// The viewer's settings, in which a shell may keep a section of its own.
    [[nodiscard]] tavix::SettingsStore& GetSettings() const;
    /// The user's choice whether a shell begins with its welcome page or with what was open last.
    [[nodiscard]] bool ShowsWelcomeAtStart() const;
    /// The folder whose repositories a shell's welcome page offers beside those opened lately, the setting `UseVault`;
    /// "" for none.
    [[nodiscard]] std::string GetVault() const;
    /// What kept the settings from being read, to be shown once; "" when they are in order.
    [[nodiscard]] const std::string& GetStartProblem() const;

  private:
    friend class TavixQtWindow;
    struct Window;

    [[nodiscard]] tavix::CTavixView* View() const;
    void AddView(tavix::CTavixView& view);
    [[nodiscard]] tavix::Messages& GetMessages() const;
    [[nodiscard]] std::unique_ptr<Window> MakeWindow();
    [[nodiscard]] bool RefusesNow() const;
    /// Brings the dialog that is open to the front; false when none is.
    bool FocusDialog() const;
    bool TellSiteAtLastStop(const NativeMessage& message);

    std::shared_ptr<tavix::CTavixApp> m_app;
    tavix::Messages* m_messages; ///< the shell's; null for boxes of our own
    std::unique_ptr<Window> m_window;
};

} // namespace Veldra::Solenne::Tavix
