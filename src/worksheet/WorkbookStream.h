#pragma once

#include "base/Result.h"
#include "worksheet/SharedStrings.h"
#include "worksheet/SheetPart.h"

#include <vector>

namespace tavix::worksheet {

/// Writes the stream "Workbook": the records of the whole, then those of each sheet. Fails when the sink does, or when
/// it would be longer than readers can address; then before anything is written.
Status writeWorkbookStream(const std::vector<SheetImage>& sheets, const SharedStrings& strings, const Sink& sink);

} // namespace tavix::worksheet
