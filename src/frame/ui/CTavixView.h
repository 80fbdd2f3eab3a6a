#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CTavixDoc.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "doc/ItemCode.h"
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
class CTableInfo;
class CTables;
class CTavixApp;
class CTearOff;

/// The one window that a shell embeds: navigator on the left, report pane beside it, and on the right, if the user
/// wants it, the table information. It owns the document and carries refresh notifications and commands to whom they
/// concern.
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

    /// Called when the viewer wants run history to be deleted. Without one it deletes by itself.
    void SetDeleteHistoryRequest(std::function<void()> request) { m_deleteHistoryRequest = std::move(request); }
    /// Called after the current run or the list of runs may have changed.
    void SetRunsChanged(std::function<void()> changed) { m_runsChanged = std::move(changed); }
    /// Called when a repository server wants a user or a password that the connection string lacks; whoever is called
    /// answers through SetAuthSvrCreds. The string is never shown, and neither are these two.
    void SetCredentialsRequest(std::function<void()> request) { m_credentialsRequest = std::move(request); }
    void SetAuthSvrCreds(const std::string& userId, const std::string& password);
    /// For a view that is about to be destroyed and cannot be yet, because a dialog is open under which its functions
    /// have to return first: closes the dialogs and the report, hides all windows and calls nobody any more.
    void Retire();
    [[nodiscard]] bool IsRetired() const { return m_isRetired; }

    /// Opens the job's report in place of the present one and keeps `text` with it. False, after a message, leaves
    /// the view empty.
    bool LoadReportForJob(const std::string& text, int jobId, const KvbString& connection);
    /// `connectionType` is exactly "ODBC" or "KVTK", else false.
    bool SelectTable(const std::string& dataSource, const std::string& connectionType, const std::string& qualifier1,
                     const std::string& qualifier2, const std::string& table);
    /// Asks which runs, and deletes them.
    void DeleteHistory();
    [[nodiscard]] CTavixMain& GetTavixMain() { return m_main; }
    [[nodiscard]] CTables& GetNavigator() { return *m_navigator; }
    void SetInternalFocus();
    /// Where a Tab enters the view: the tree of the navigator page that is showing.
    [[nodiscard]] QWidget* GetFirstTabStop();
    /// The last control of the report pane that takes the keyboard, else the last one before the pane.
    [[nodiscard]] QWidget* GetLastTabStop();
    /// Adds the field that is selected to the collection; 0 when none is, or, after a message, when it fails.
    int AddCurrentFieldToCollection(int collectionId);
    /// The document's session; null without a report.
    [[nodiscard]] PrViewer* GetViewer() const { return m_document->GetViewer(); }

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    void SetLoading(bool loading) override { m_loading = loading; }
    void Broadcast(RefreshHint hint) override { Broadcast(nullptr, hint, 0); }

    CTavixDoc& GetTavixDoc() override { return *m_document; }
    QWidget* GetWindowOwner() override { return this; }
    int GetPatienceMilliseconds() const override { return m_patience; }
    bool IsLoading() const override { return m_loading; }
    NavigatorPage GetMode() const override { return m_mode; }
    const ReportSelection& GetSelection() const override { return m_selection; }
    void SelectionChanged(NavigatorPage page, const ReportSelection& selection) override;
    bool SelectField(int fieldId) override;
    bool Navigate(const NavigateRequest& request) override;
    bool OpenField(const ReportSelection& owner, int fieldId) override;
    std::string GetDetailsText(const ReportSelection& selection) override;
    void WarnSoon(const std::string& text) override;
    void Broadcast(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    /// Offers the command to the panes, then looks among the view's own.
    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;
    [[nodiscard]] static std::span<const CommandRow<CTavixView>> CommandRows();
    /// Who is told of a refresh, in order: the panes, null for one that is not there, then the windows of detached
    /// views.
    [[nodiscard]] std::vector<CRefreshItem*> RefreshOrder();
    /// The panes to which commands are offered, in order; null for a pane that is not there.
    [[nodiscard]] std::array<CommandTarget*, 3> CommandOrder() const;
    [[nodiscard]] CReportPane& GetReportPane() const;
    /// The ItemCode of the tab that is showing.
    [[nodiscard]] int GetItemCode() const;

    void OnNew();
    void OnToggleTableInformation();
    [[nodiscard]] bool CanToggleTableInformation() const { return m_mode != NavigatorPage::Collections; }
    [[nodiscard]] bool IsTableInformationShown() const { return m_info != nullptr; }
    void OnCloseTableInformation();
    template <Splitter splitter, int by>
    void OnMoveSplitter() {
        MoveSplitter(splitter, by);
    }
    void OnRefreshCollections();
    [[nodiscard]] bool CanRefreshCollections() const { return m_mode == NavigatorPage::Collections; }
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
    void TellRunsChanged();
    void OpenTableInformation();
    void CloseTableInformation();
    void Remember();
    [[nodiscard]] bool HasLoadedTables() const;
    void ShowReportPane();
    void ShowEmptyView();
    void ShowReportView(ReportPaneKind kind);
    [[nodiscard]] CReportView& KeptView(ReportPaneKind kind);
    void Detach();
    /// All, or those of the report that is open.
    [[nodiscard]] std::vector<CTearOff*> TearOffs() const;
    [[nodiscard]] std::vector<CTearOff*> TearOffsOfReport() const;
    void ShowWarnings();

    std::unique_ptr<CTavixDoc> m_document;
    int m_patience; ///< milliseconds
    CTavixMain m_main;
    CTables* m_navigator = nullptr;
    QStackedWidget* m_reportPane;
    CEmptyView* m_empty;
    // Made once and kept, for their tabs cost more than all that is read to fill them.
    CReportView* m_tableView = nullptr;
    CReportView* m_fieldView = nullptr;
    CReportView* m_view = nullptr; ///< the one that is shown; null while the empty view is
    CTableInfo* m_info = nullptr;
    QTimer m_afterLoad;
    NavigatorPage m_mode = NavigatorPage::Tables;
    ReportSelection m_selection;
    /// A window of its own, with the report that it was detached from.
    struct Detached {
        QPointer<CTearOff> window;
        std::string connection;
        int jobId;
    };
    std::vector<Detached> m_tearOffs;
    std::vector<std::string> m_warnings; ///< to be shown when what is going on is over
    std::string m_connection;            ///< of the report that is open, to know another one from the same
    bool m_loading = false;
    bool m_isRetired = false;
    bool m_wantsInfo = false; ///< as the user left it
    std::function<void()> m_deleteHistoryRequest;
    std::function<void()> m_runsChanged;
    std::function<void()> m_credentialsRequest;
    std::string m_userId;
    std::string m_password;
};

} // namespace tavix
