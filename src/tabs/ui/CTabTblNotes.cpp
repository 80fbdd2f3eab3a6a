#include "tabs/ui/CTabTblNotes.h"

namespace tavix {

CTabTblNotes::CTabTblNotes(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CNotesTab(site, subject, isTornOff, &tableNoteSubject, parent) {
    setObjectName(QStringLiteral("tableNotes"));
}

} // namespace tavix
