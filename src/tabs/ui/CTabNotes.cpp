#include "tabs/ui/CTabNotes.h"

namespace tavix {

CTabNotes::CTabNotes(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CNotesTab(site, subject, isTornOff, &fieldNoteSubject, parent) {
    setObjectName(QStringLiteral("fieldNotes"));
}

} // namespace tavix
