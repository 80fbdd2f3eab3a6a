#pragma once

#include "alert/AlertCommands.h"
#include "tabs/MetricDoor.h"
#include "tabs/StdMetRows.h"
#include "tabs/ui/CProfTab.h"
#include "tabs/ui/DrillThrough.h"

class QLabel;
class QMenu;
class QStackedWidget;

namespace tavix {

class CUGCtrl;
class FindingsStrip;

/// The standard metrics of the fields of a table or collection: a grid with one row per field.
class CTabStdMet final : public CProfTab {
    Q_OBJECT
  public:
    CTabStdMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
    ~CTabStdMet() override;

    QWidget* GetLastTabStop() override;
    /// Makes the field's row current, at the metric if it is shown; -1 for no metric.
    void SelectMetric(int fieldId, int metricId);

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    void Fill(bool isSameObject) override;

  private:
    [[nodiscard]] std::vector<int> SelectedFields() const;
    void OpenField(std::int64_t row);
    /// Which source rows the current cell opens.
    [[nodiscard]] MetricDoor CurrentDoor() const;
    void OpenRows();
    /// The rows of the only blank value, else the list of the blank values.
    void OpenBlanks(const ReportSubject& field, std::int64_t count);
    /// The current figure, and the alerts that watch it.
    [[nodiscard]] AlertTarget CurrentFigure() const;
    void AddHeadingEntries(QMenu& menu, int column);
    void ShowTrendOf(int metricId);
    void FillCollectionMenu();

    StdMetRows m_rows;
    QStackedWidget* m_stack;
    CUGCtrl* m_grid;
    QLabel* m_note;
    QMenu* m_collectionMenu;
    DrillThrough m_drill;
    FindingsStrip* m_findings;
};

} // namespace tavix
