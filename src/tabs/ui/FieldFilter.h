#pragma once

#include "doc/CViewSite.h"
#include "report/DistributionKind.h"

#include <string>

namespace tavix {

/// Filters a distribution of the field in all views and remembers the filter.
void filterField(CViewSite& site, int fieldId, DistributionKind kind, const std::string& code);

} // namespace tavix
