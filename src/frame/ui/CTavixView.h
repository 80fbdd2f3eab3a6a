#pragma once

#include "base/ColorScheme.h"
#include "doc/CRefreshItem.h"
#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "frame/ViewModel.h"
#include "frame/ui/CTavixMain.h"
#include "frame/ui/SplitFrame.h"

#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QStackedWidget;

namespace tavix {

class CEmptyView;
class CReportPane;
class CReportView;
class CRunView;
class CTableInfo;
class CTables;
class CTavixApp;
class CTearOff;
struct OverviewDoor;

/// A separate window of the view as a Window menu lists it.
struct OpenWindow {
    int id = -1;
    std::string name; ///< "airports · city", "Frequency Distribution Drill Through · city: “NA”"

    bool operator==(const OpenWindow&) const = default;
};

/// The one window that a shell embeds: navigator on the left, report pane beside it, and on the right, if the user
/// wants it, the table information. It owns the document and distributes refresh notifications and commands to the
/// panes.
class CTavixView final : public SplitFrame,
                         public CRefreshItem,
                         public CommandTarget,
                         public DocumentFrame,
                         public CViewSite {
    Q_OBJECT
  public:
    /// Application and messages must outlive the view. A reading that takes longer than the patience shows its progress
    /// in a dialog.
    CTavixView(const CTavixApp& app, Messages& messages, QWidget* parent = nullptr,
               int patienceMilliseconds = kPatienceMilliseconds);
    ~CTavixView() override;

    /// `request` is called when the user wants to delete run history. Without one the view deletes it itself.
    void SetDeleteHistoryRequest(std::function<void()> request) { m_deleteHistoryRequest = std::move(request); }
    /// `changed` is called after the current run or the list of runs may have changed.
    void SetRunsChanged(std::function<void()> changed) { m_runsChanged = std::move(changed); }
    /// `changed` is called after alerts of the current run may have changed while the run stayed.
    void SetAlertsChanged(std::function<void()> changed) { m_alertsChanged = std::move(changed); }
    /// `request` is called when the connection string of a repository server lacks a user or password; it answers by
    /// SetAuthSvrCreds. The string, user and password are never shown.
    void SetCredentialsRequest(std::function<void()> request) { m_credentialsRequest = std::move(request); }
    /// The options offer the choice of colours while `offered` is true; `chosen` is called with another choice.
    void SetColorSchemes(std::function<bool()> offered, std::function<void(ColorScheme)> chosen) {
        m_offersColors = std::move(offered);
        m_colorsChosen = std::move(chosen);
    }
    void SetAuthSvrCreds(const std::string& userId, const std::string& password);
    /// For a view that must be destroyed while one of its functions runs a dialog: closes the dialogs and the report,
    /// hides all windows and makes no more callbacks. The owner destroys the view when the functions have returned.
    void Retire();
    [[nodiscard]] bool IsRetired() const { return m_isRetired; }

    /// Opens the job's report in place of the current one and keeps `text` with it. After a failure, which is shown,
    /// the view is empty.
    bool LoadReportForJob(const std::string& text, int jobId, const KvbString& connection);
    /// False unless `connectionType` is exactly "ODBC" or "KVTK" and the table exists.
    bool SelectTable(const std::string& dataSource, const std::string& connectionType, const std::string& qualifier1,
                     const std::string& qualifier2, const std::string& table);
    /// Asks the user which runs to delete, and deletes them.
    void DeleteHistory();
    [[nodiscard]] CTavixMain& GetTavixMain() { return m_main; }
    void SetInternalFocus();
    /// Where a Tab enters the view: the tree of the navigator page that is showing.
    [[nodiscard]] QWidget* GetFirstTabStop();
    /// The last control of the report pane that takes the keyboard, else the last one before the pane.
    [[nodiscard]] QWidget* GetLastTabStop();
    /// Adds the selected field to the collection. Returns 1, or 0 when no field is selected or, after a message, on
    /// failure.
    int AddCurrentFieldToCollection(int collectionId);

    /// The windows of detached views and of drill-through, in the order in which they were opened.
    [[nodiscard]] std::vector<OpenWindow> GetOpenWindows();
    /// Brings the window to the front; false when it has been closed.
    bool RaiseWindow(int id);
    void CloseWindows();

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    void SetLoading(bool loading) override { m_loading = loading; }
    void Broadcast(RefreshHint hint) override { Broadcast(nullptr, hint, 0); }

    CTavixDoc& GetTavixDoc() override { return *m_document; }
    QWidget* GetWindowOwner() override { return this; }
    int GetPatienceMilliseconds() const override { return m_patience; }
    bool IsLoading() const override { return m_loading; }
    NavigatorPage GetMode() const override { return m_model.GetPage(); }
    const ReportSelection& GetSelection() const override { return m_model.GetSelection(); }
    void SelectionChanged(NavigatorPage page, const ReportSelection& selection) override;
    bool SelectField(int fieldId) override;
    bool Navigate(const NavigateRequest& request) override;
    bool OpenField(const ReportSelection& owner, int fieldId) override;
    std::string GetDetailsText(const ReportSelection& selection) override;
    void WarnSoon(const std::string& text) override;
    void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    /// Offers the command to the panes, then to the view's own handlers.
    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;
    /// The targets of a refresh, in order: the panes, null for one that is not there, then the windows of detached
    /// views.
    [[nodiscard]] std::vector<CRefreshItem*> RefreshOrder();
    /// The panes to which commands are offered, in order; null for a pane that is not there.
    [[nodiscard]] std::array<CommandTarget*, 3> CommandOrder() const;
    [[nodiscard]] CReportPane& GetReportPane() const;
    /// The ItemCode of the tab that is showing.
    [[nodiscard]] int GetItemCode() const;

    void OnNew();
    void OnToggleTableInformation();
    [[nodiscard]] bool CanToggleTableInformation() const { return m_model.CanToggleTableInformation(); }
    [[nodiscard]] bool IsTableInformationShown() const { return m_info != nullptr; }
    void OnCloseTableInformation();
    template <Splitter splitter, int by>
    void OnMoveSplitter() {
        MoveSplitter(splitter, by);
    }
    void OnRefreshCollections();
    [[nodiscard]] bool CanRefreshCollections() const { return m_model.CanRefreshCollections(); }
    void OnOptions();
    void OnShowInvisible();
    [[nodiscard]] bool ShowsInvisible() const;
    void OnChooseRun();
    [[nodiscard]] bool CanChooseRun() const { return m_document->HasReport(); }
    void OnDeleteHistory();
    [[nodiscard]] bool CanDeleteHistory() const;

  protected:
    void RatiosChanged() override { Remember(); }
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void AfterLoad();
    bool SelectTableOf(const NavigateRequest& request);
    void TellRunsChanged();
    void TellAlertsChanged();
    void RefreshOverview(RefreshHint hint);
    void OpenTableInformation();
    void CloseTableInformation();
    void Remember();
    void ShowReportPane();
    /// False when there is none to show.
    bool ShowOverview();
    void ShowEmptyView();
    void OpenDoor(const OverviewDoor& door);
    void ShowReportView(ReportPaneKind kind);
    [[nodiscard]] CReportView& KeptView(ReportPaneKind kind);
    void Detach();
    /// The windows of all detached views, or of those of the open report.
    [[nodiscard]] std::vector<CTearOff*> TearOffs() const;
    [[nodiscard]] std::vector<CTearOff*> TearOffsOfReport() const;
    [[nodiscard]] std::vector<QWidget*> SeparateWindows() const;
    void ShowWarnings();

    std::unique_ptr<CTavixDoc> m_document;
    int m_patience; ///< milliseconds
    CTavixMain m_main;
    CTables* m_navigator = nullptr;
    QStackedWidget* m_reportPane;
    CEmptyView* m_empty;
    // Created once and kept: creating their tabs costs more than reading the contents.
    CReportView* m_tableView = nullptr;
    CReportView* m_fieldView = nullptr;
    CReportView* m_view = nullptr; ///< the one that is shown; null while none is
    CRunView* m_overview = nullptr;
    CTableInfo* m_info = nullptr;
    QTimer m_afterLoad;
    ViewModel m_model;
    /// The window of a detached view, and the report that the view belongs to.
    struct Detached {
        QPointer<CTearOff> window;
        std::string connection;
        int jobId;
    };
    std::vector<Detached> m_tearOffs;
    int m_lastWindow = 0;                ///< the id that was given last, see GetOpenWindows
    std::vector<std::string> m_warnings; ///< see WarnSoon
    std::string m_connection;            ///< of the open report
    bool m_loading = false;
    bool m_isRetired = false;
    bool m_awaitsSelection = false; ///< a report was loaded, and its first table is about to be selected
    bool m_wantsInfo = false;       ///< the user's last choice
    std::function<void()> m_deleteHistoryRequest;
    std::function<void()> m_runsChanged;
    std::function<void()> m_alertsChanged;
    std::function<void()> m_credentialsRequest;
    std::function<bool()> m_offersColors;
    std::function<void(ColorScheme)> m_colorsChosen;
    std::string m_userId;
    std::string m_password;
};

} // namespace tavix
