#pragma once

#include "tabs/ui/CSentenceTab.h"

namespace tavix {

/// The business rules of a table. No run measures any today.
class CTabBusRule final : public CSentenceTab {
    Q_OBJECT
  public:
    CTabBusRule(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr)
        : CSentenceTab("This report has no business rules.", site, subject, isTornOff, parent) {}
};

} // namespace tavix
