#pragma once

#include "base/Result.h"

namespace tavix {

class PrViewer;

/// Looks up anew which collections hold the fields of every table of the current run.
Status refreshCollectionsOfAllTables(PrViewer& viewer);

} // namespace tavix
