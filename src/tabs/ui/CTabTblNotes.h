#pragma once

#include "tabs/ui/CNotesTab.h"

namespace tavix {

/// The notes of the selected table or collection.
class CTabTblNotes final : public CNotesTab {
    Q_OBJECT
  public:
    CTabTblNotes(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
};

} // namespace tavix
