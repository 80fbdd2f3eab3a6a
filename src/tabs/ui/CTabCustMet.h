#pragma once

#include "tabs/ui/CSentenceTab.h"

namespace tavix {

/// The custom metrics of a table. No run measures any today.
class CTabCustMet final : public CSentenceTab {
    Q_OBJECT
  public:
    CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr)
        : CSentenceTab("This report has no custom metrics.", site, subject, isTornOff, parent) {}
};

} // namespace tavix
