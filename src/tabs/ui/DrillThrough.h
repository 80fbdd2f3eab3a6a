#pragma once

#include "access/PrViewer.h"
#include "base/KvbString.h"
#include "doc/CViewSite.h"
#include "drill/ui/CDrillThru.h"
#include "report/ReportSubject.h"
#include "tabs/RuleRows.h"

#include <functional>
#include <optional>
#include <string>

class QAction;
class QWidget;

namespace tavix {

class PrViewDisplayMessage;

/// Opens the windows with the source rows behind what a tab lists. Without a report, and where drill-through is not
/// offered, the functions do nothing. A source that cannot be opened is a message; a file that was moved can be
/// located.
class DrillThrough {
  public:
    /// Both must outlive the object.
    DrillThrough(CViewSite& site, QWidget& tab) : m_site(site), m_tab(tab) {}

    [[nodiscard]] bool IsOffered() const;
    /// An entry for the tab's context menu; it calls nothing by itself.
    [[nodiscard]] QAction* MakeAction() const;

    /// The rows in which the subject's field has the value; null stands for those without one.
    void OpenValue(const ReportSubject& subject, const KvbString& value, DrillOrigin origin) const;
    /// The rows in which the field's value has the pattern.
    void OpenPattern(const ReportSubject& subject, const KvbString& pattern) const;
    /// The rows that violated the rule, as far as the run has kept them.
    void OpenRule(const BusinessRuleRows::Rule& rule, const std::string& name) const;

  private:
    using OpenCursor = std::function<DrillCursor(PrViewer&, PrViewDisplayMessage&)>;

    void Open(DrillRequest request, const OpenCursor& openCursor) const;
    /// Shows the window or says why not; only a file that is missing is left to the caller.
    [[nodiscard]] std::optional<MissingFile> TryToOpen(DrillRequest& request, const OpenCursor& openCursor) const;
    /// Lets the user locate the file; false when there is nothing to try again.
    [[nodiscard]] bool Relocate(const MissingFile& file) const;
    void OpenRows(const ReportSubject& subject, const KvbString& value, bool isPattern, DrillOrigin origin,
                  const std::string& words) const;

    CViewSite& m_site;
    QWidget& m_tab;
};

} // namespace tavix
