#pragma once

#include "base/Result.h"
#include "worksheet/SharedStrings.h"
#include "worksheet/SheetPart.h"

#include <vector>

namespace tavix::worksheet {

/// Writes the stream "Workbook": the records of the workbook, then those of each sheet. Fails if the sink does, or,
/// before writing anything, if the stream would exceed what readers can address.
Status writeWorkbookStream(const std::vector<SheetImage>& sheets, const SharedStrings& strings, const Sink& sink);

} // namespace tavix::worksheet
