#pragma once

#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/ReportSubject.h"
#include "tabs/TypesModel.h"
#include "tabs/ui/DrillThrough.h"

#include <QWidget>

class QAction;
class QLabel;

namespace tavix {

class CProfTab;
class CUGCtrl;
class LinkButton;

/// Below the metrics of a field: which types its values fit, and the values that do not. Enter on a value opens its
/// source rows, and on a form those of all its values; the context menu and the link show values in the frequency
/// distribution.
class TypesPane final : public QWidget {
    Q_OBJECT
  public:
    /// All must outlive the pane.
    TypesPane(CViewSite& site, const ReportSubject& subject, CProfTab& tab);
    ~TypesPane() override;

    /// Reads the types of the subject's field. Hidden without a field, and when they cannot be read.
    void Refill();
    void SetListFont(const QFont& font);
    /// Null when no list is shown.
    [[nodiscard]] QWidget* GetLastTabStop() const;

  Q_SIGNALS:
    /// The tab with this code shows what the user asked for.
    void TabRequested(tavix::ItemCode code);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] QAction* AddAction(CUGCtrl& grid, const QString& text, void (TypesPane::*act)());
    void ShowModel();
    void ApplyColors();
    void ShowActions();
    /// The condition of the current form; "" without one.
    [[nodiscard]] std::string CurrentForm() const;
    [[nodiscard]] std::optional<KvbString> CurrentMisfit() const;
    void OpenForm();
    void OpenMisfit();
    void OpenMisfits();
    void FilterToForm();
    void FilterToMisfits();
    void Filter(const std::string& code);

    CViewSite& m_site;
    const ReportSubject& m_subject;
    TypesModel m_model;
    DrillThrough m_drill;
    QLabel* m_text;
    QLabel* m_remark;
    QWidget* m_lists;
    QWidget* m_misfitSide;
    QLabel* m_misfitHeading;
    LinkButton* m_showMisfits;
    CUGCtrl* m_forms;
    CUGCtrl* m_misfits;
    QAction* m_drillForm;
    QAction* m_filterForm;
    QAction* m_drillMisfit;
    QAction* m_drillMisfits;
    QAction* m_filterMisfits;
};

} // namespace tavix
