#pragma once

#include "tabs/ui/CNotesTab.h"

namespace tavix {

/// The notes of the selected field.
class CTabNotes final : public CNotesTab {
    Q_OBJECT
  public:
    CTabNotes(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
};

} // namespace tavix
