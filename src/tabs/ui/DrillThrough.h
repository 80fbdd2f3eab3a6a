#pragma once

#include "base/KvbString.h"
#include "doc/CViewSite.h"
#include "doc/FieldRecord.h"
#include "drill/ui/CDrillThru.h"
#include "tabs/RuleRows.h"

#include <functional>
#include <string>

class QAction;
class QWidget;

namespace tavix {

class PrViewDisplayMessage;

/// Opens the windows with the source rows behind what a tab lists. Without a report, and where drill-through is not
/// offered, the functions do nothing. A source that cannot be opened is a message.
class DrillThrough {
  public:
    /// Both must outlive the object.
    DrillThrough(CViewSite& site, QWidget& tab) : m_site(site), m_tab(tab) {}

    [[nodiscard]] bool IsOffered() const;
    /// An entry for the tab's context menu; it calls nothing by itself.
    [[nodiscard]] QAction* MakeAction() const;

    /// The rows in which the field has the value; null stands for those without one.
    void OpenValue(const FieldRecord& field, const KvbString& value, DrillOrigin origin) const;
    /// The rows in which the field's value has the pattern.
    void OpenPattern(const FieldRecord& field, const KvbString& pattern) const;
    /// The rows that violated the rule, as far as the run has kept them.
    void OpenRule(const BusinessRuleRows::Rule& rule, const std::string& name) const;

  private:
    void Open(DrillRequest request,
              const std::function<DrillCursor(PrViewer&, PrViewDisplayMessage&)>& openCursor) const;
    void OpenRows(const FieldRecord& field, const KvbString& value, bool isPattern, DrillOrigin origin,
                  const std::string& subject) const;

    CViewSite& m_site;
    QWidget& m_tab;
};

} // namespace tavix
