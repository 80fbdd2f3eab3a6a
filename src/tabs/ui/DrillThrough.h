#pragma once

#include "base/KvbString.h"
#include "doc/CViewSite.h"
#include "report/ReportSubject.h"
#include "tabs/DrillThroughModel.h"

#include <string>

class QAction;
class QWidget;

namespace tavix {

/// Opens windows with the source rows of what a tab lists. Without a report, and where drill-through is not offered,
/// the functions do nothing. When a source cannot be opened, a message says why; a file that was moved can be located.
class DrillThrough {
  public:
    /// Both must outlive the object.
    DrillThrough(CViewSite& site, QWidget& tab) : m_site(site), m_tab(tab) {}

    [[nodiscard]] bool IsOffered() const;
    /// An entry for the tab's context menu; the caller connects it.
    [[nodiscard]] QAction* MakeAction() const;

    /// The rows in which the subject's field has the value; null stands for the rows without a value.
    void OpenValue(const ReportSubject& subject, const KvbString& value, DrillOrigin origin) const;
    /// The rows in which the field's value has the pattern.
    void OpenPattern(const ReportSubject& subject, const KvbString& pattern) const;
    /// The rows whose value meets the condition; see drillIntoCondition().
    void OpenCondition(const ReportSubject& subject, const std::string& condition, const std::string& words,
                       std::int64_t inRun) const;
    /// The rows that violated the rule, as far as the run has kept them.
    void OpenRule(const BusinessRuleRows::Rule& rule, const std::string& name) const;

  private:
    void Open(DrillTask task) const;
    [[nodiscard]] DrillOutcome TryToOpen(DrillTask& task) const;
    /// Lets the user locate the missing file; false when opening again is pointless.
    [[nodiscard]] bool Locate() const;
    /// The parent of the windows, which stay open when the tab is closed or shows something else.
    [[nodiscard]] QWidget* Owner() const;

    CViewSite& m_site;
    QWidget& m_tab;
};

} // namespace tavix
