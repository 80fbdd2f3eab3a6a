#pragma once

#include "doc/CReportPane.h"
#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/FieldRecords.h"
#include "report/ReportSubject.h"
#include "tabs/ui/TabTable.h"

#include <QWidget>

#include <optional>
#include <span>
#include <string>
#include <vector>

class QLabel;
class QStackedWidget;

namespace tavix {

class CProfTab;
class CProfTabCtrl;
class ViewHeader;

/// A tab strip and its tabs, one of which is visible. In the frame the view follows the selection; torn off it keeps
/// the table, collection or field that was selected when it was made, and shows it in the current run.
class CReportView : public QWidget, public CReportPane {
    Q_OBJECT
  public:
    ~CReportView() override;

    [[nodiscard]] ReportPaneKind GetKind() const { return m_kind; }
    /// Whether this view can show the site's selection: of its kind, on its page of the navigator.
    [[nodiscard]] bool Suits(const CViewSite& site) const;
    /// Shows the site's selection.
    void ShowSelection();
    /// Shows the site's selection as a new view would, with the tab that the document remembers. Call before showing
    /// the view again: a hidden view receives no refreshes.
    void TakeUp();
    [[nodiscard]] const ReportSubject& GetSubject() const { return m_subject; }
    /// What it shows, see nameOf(); also while its report is closed.
    [[nodiscard]] std::string GetName() const;

    [[nodiscard]] int GetCurrentTab() const;
    void SelectTab(int index);
    /// Selects the tab `by` positions to the right, wrapping around.
    void StepTab(int by);
    [[nodiscard]] CProfTab& GetTab(int index) const { return *m_tabs[static_cast<std::size_t>(index)]; }
    [[nodiscard]] int GetTabCount() const { return static_cast<int>(m_tabs.size()); }
    /// The code by which export and print know the visible tab.
    [[nodiscard]] ItemCode GetItemCode() const;
    /// Gives the focus to the main control of the visible tab.
    void FocusContents();
    /// Applies the display settings again.
    void ApplyDisplay();

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;
    /// Offers the command to the visible tab.
    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;

  Q_SIGNALS:
    void DetachRequested();

  protected:
    /// Makes the tabs of the table, which must outlive the view, and shows the one that the document remembers.
    CReportView(CViewSite& site, ReportPaneKind kind, std::span<const TabRow> table, bool isTornOff, QWidget* parent);

    [[nodiscard]] CViewSite& Site() const { return m_site; }
    [[nodiscard]] bool IsTornOff() const { return m_isTornOff; }
    /// The tab as the class that makes it in the table.
    template <typename Tab>
    [[nodiscard]] Tab& TabAs(int index) const {
        return static_cast<Tab&>(GetTab(index));
    }

    void keyPressEvent(QKeyEvent* event) override;

  private:
    void AddTab(const TabRow& row);
    [[nodiscard]] const TabRow& RowOf(int index) const { return m_table[static_cast<std::size_t>(index)]; }
    [[nodiscard]] QString CaptionOf(int index) const;
    [[nodiscard]] int RememberedTab() const;
    void ReadSubject(const ReportSelection& selection);
    void ReadSubjectAgain();
    /// In a torn-off view: shows that the report is closed, and remembers the selection.
    void CloseReport();
    /// Title and captions.
    void ShowHeader();
    /// The number of raised alerts beside the caption of the tab that lists them.
    void ShowAlertCount();
    void ShowTab(int index);
    /// Shows the tab and gives it the focus.
    void OpenTab(ItemCode code);
    void ShowDetails();
    void ShowDamagedRows();

    CViewSite& m_site;
    ReportPaneKind m_kind;
    std::span<const TabRow> m_table;
    NavigatorPage m_mode;
    bool m_isTornOff;
    ReportSubject m_subject;
    FieldRecords m_records;
    std::string m_missing;                 ///< why the subject cannot be shown
    std::string m_reportTitle;             ///< of the subject's report
    std::optional<ReportSelection> m_kept; ///< shown again when its report is reopened
    CProfTabCtrl* m_strip;
    ViewHeader* m_header;
    QStackedWidget* m_pages;
    QLabel* m_note;
    std::vector<CProfTab*> m_tabs;
};

} // namespace tavix
