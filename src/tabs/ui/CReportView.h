#pragma once

#include "doc/CReportPane.h"
#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/FieldRecords.h"
#include "report/ReportSubject.h"

#include <QWidget>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QLabel;
class QStackedWidget;

namespace tavix {

class CProfTab;
class CProfTabCtrl;
class ViewHeader;

/// A strip of tabs over what they show, of which one is seen. In the frame it follows what is selected there; torn off
/// it keeps the table, collection or field that was selected when it came to be, in whatever run is current.
class CReportView : public QWidget, public CReportPane {
    Q_OBJECT
  public:
    ~CReportView() override;

    [[nodiscard]] ReportPaneKind GetKind() const { return m_kind; }
    /// Whether the site's selection is one that this view, made for a table or a field on one page of the navigator,
    /// can show.
    [[nodiscard]] bool Suits(const CViewSite& site) const;
    /// Shows what the site has selected now.
    void ShowSelection();
    /// Shows what the site has selected now as a view made for it would, with the tab that the document remembers:
    /// what was shown before is forgotten. Nothing is told to a view that the frame does not show, so this comes first
    /// when it is shown again.
    void TakeUp();
    [[nodiscard]] const ReportSubject& GetSubject() const { return m_subject; }

    [[nodiscard]] int GetCurrentTab() const;
    void SelectTab(int index);
    /// Selects the tab so many places further, around the ends.
    void StepTab(int by);
    [[nodiscard]] CProfTab& GetTab(int index) const { return *m_tabs[static_cast<std::size_t>(index)]; }
    [[nodiscard]] int GetTabCount() const { return static_cast<int>(m_tabs.size()); }
    /// Gives the keyboard to what the visible tab shows.
    void FocusContents();
    /// Reads anew how figures are to be displayed.
    void ApplyDisplay();

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;
    /// Offers the command to the visible tab.
    bool ExecuteCommand(int commandId) override;
    CommandState UpdateCommand(int commandId) const override;

  Q_SIGNALS:
    void DetachRequested();

  protected:
    CReportView(CViewSite& site, ReportPaneKind kind, bool isTornOff, QWidget* parent);

    [[nodiscard]] CViewSite& Site() const { return m_site; }
    [[nodiscard]] bool IsTornOff() const { return m_isTornOff; }
    /// In the order of the strip. Owned.
    void AddTab(CProfTab* tab, std::string_view caption);
    /// After the last tab was added.
    void Start();
    /// The caption of a tab with what it says beside its name.
    virtual QString CaptionOf(int index) const;

    void keyPressEvent(QKeyEvent* event) override;

  private:
    [[nodiscard]] int RememberedTab() const;
    void ReadSubject(const ReportSelection& selection);
    void ReadSubjectAgain();
    /// For a view that is torn off: shows that the report is closed, and keeps what it showed.
    void CloseReport();
    /// Title and captions.
    void ShowHeader();
    void ShowTab(int index);
    void ShowDetails();

    CViewSite& m_site;
    ReportPaneKind m_kind;
    NavigatorPage m_mode;
    bool m_isTornOff;
    ReportSubject m_subject;
    FieldRecords m_records;
    std::string m_missing;                 ///< why the subject cannot be shown
    std::string m_reportTitle;             ///< of the report that the subject is in
    std::optional<ReportSelection> m_kept; ///< what is shown again when its report is open again
    CProfTabCtrl* m_strip;
    ViewHeader* m_header;
    QStackedWidget* m_pages;
    QLabel* m_note;
    std::vector<CProfTab*> m_tabs;
    std::vector<QString> m_captions;
};

} // namespace tavix
