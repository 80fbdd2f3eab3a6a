#include "tabs/ui/FieldFilter.h"

#include "doc/CTavixDoc.h"
#include "filter/FilterMemory.h"

namespace tavix {

void filterField(CViewSite& site, int fieldId, DistributionKind kind, const std::string& code) {
    CTavixDoc& document = site.GetTavixDoc();
    // The filter applies even when the settings cannot be written.
    (void)FilterMemory(document.GetSettings()).Remember(kind, code);
    document.GetFieldFilters().Set(fieldId, kind, code);
    site.Broadcast(nullptr, RefreshHint::FilterChanged, fieldId);
}

} // namespace tavix
