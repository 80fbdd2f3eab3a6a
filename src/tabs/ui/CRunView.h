#pragma once

#include "doc/CReportPane.h"
#include "doc/CViewSite.h"
#include "tabs/RunOverviewModel.h"

#include <QWidget>

#include <array>
#include <vector>

class QGridLayout;
class QLabel;
class QScrollArea;
class QStackedWidget;

namespace tavix {

class CUGCtrl;
class LinkButton;
class OverviewCardButton;

/// The report pane while a data source, or nothing, is selected: the overview of the run. Its figures and rows lead to
/// tables, fields and tabs. There is nothing to export or print.
class CRunView final : public QWidget, public CReportPane {
    Q_OBJECT
  public:
    /// The site must outlive the view.
    explicit CRunView(CViewSite& site, QWidget* parent = nullptr);
    ~CRunView() override;

    /// Shows the current run, or one of its data sources; RunOverviewModel::kAllSources for all. The run is read when
    /// it is shown for the first time. False, after a message, when it cannot be read.
    bool ShowRun(int source);
    /// Applies the display settings again.
    void ApplyDisplay();

    /// Call it when another report or run was loaded, or runs were deleted: the run is read again when it is shown
    /// next.
    void Forget() { m_run = -1; }
    /// The frame shows the run again; there is nothing else to refresh.
    void Refresh(CRefreshItem*, RefreshHint, int) override {}
    QWidget* GetLastTabStop() override;

  Q_SIGNALS:
    void DoorOpened(const OverviewDoor& door);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    struct ListPane {
        QWidget* pane;
        QLabel* title;
        QStackedWidget* stack;
        CUGCtrl* grid;
        QLabel* note;
    };
    [[nodiscard]] ListPane MakeList(int index);
    void ShowModel();
    void LayOut();
    void ApplyColors();

    CViewSite& m_site;
    RunOverviewModel m_model;
    int m_run = -1; ///< the run that the model shows; -1 when it must be read
    QLabel* m_title;
    QLabel* m_detail;
    LinkButton* m_suggest;
    QScrollArea* m_area;
    QWidget* m_contents;
    QGridLayout* m_cardGrid;
    QGridLayout* m_listGrid;
    std::vector<OverviewCardButton*> m_cards;
    std::array<ListPane, RunOverviewModel::ListCount> m_lists;
    int m_cardColumns = 0;
    int m_listColumns = 0;
};

} // namespace tavix
