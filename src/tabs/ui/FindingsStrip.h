#pragma once

#include "doc/CViewSite.h"
#include "doc/ItemCode.h"
#include "report/ReportSubject.h"
#include "tabs/FindingsModel.h"
#include "tabs/ui/DrillThrough.h"

#include <QWidget>

#include <cstdint>

class QAction;
class QLabel;
class QToolButton;

namespace tavix {

class CProfTab;
class CUGCtrl;
class ElidedLabel;
class LinkButton;

/// Above the list of a first tab: how many findings there are about the field, or about the table and its fields. A
/// button opens and closes their list, with the meaning of the current one and links to its values and rows. Findings
/// are dismissed with a reason, and restored.
class FindingsStrip final : public QWidget {
    Q_OBJECT
  public:
    /// All must outlive the strip.
    FindingsStrip(CViewSite& site, const ReportSubject& subject, CProfTab& tab, bool isOfField);
    ~FindingsStrip() override;

    /// Reads the findings. Hidden when there are none.
    void Refill();
    void SetListFont(const QFont& font);
    [[nodiscard]] bool IsOpen() const { return m_isOpen; }
    void SetOpen(bool isOpen);

  Q_SIGNALS:
    /// The tab with this code shows what the user asked for.
    void TabRequested(tavix::ItemCode code);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    [[nodiscard]] LinkButton* AddLink(const char* name, const QString& text, void (FindingsStrip::*act)());
    void ShowModel();
    void FitHeight();
    void ShowCurrent();
    void ApplyColors();
    [[nodiscard]] const FindingRecord* Current() const;
    /// The current finding's field with what doors need; without a field, one of id -1.
    [[nodiscard]] ReportSubject SubjectOf(const FindingRecord& finding) const;
    void Activate();
    void ShowValues();
    void ShowRows();
    void ToggleDismissed();
    void DismissOrRestore();
    void Changed();

    CViewSite& m_site;
    const ReportSubject& m_subject;
    CProfTab& m_tab;
    bool m_isOfField;
    bool m_isOpen = false;
    ReportSelection m_filledFor;
    FindingsModel m_model;
    DrillThrough m_drill;
    QToolButton* m_toggle;
    ElidedLabel* m_text;
    LinkButton* m_dismissed;
    QWidget* m_body;
    CUGCtrl* m_grid;
    QLabel* m_explanation;
    LinkButton* m_values;
    LinkButton* m_rows;
    LinkButton* m_dismiss;
    QAction* m_valuesAction;
    QAction* m_rowsAction;
    QAction* m_dismissAction;
};

} // namespace tavix
