#pragma once

#include "base/Result.h"

namespace tavix {

class PrViewer;

/// Reads again, for every table of the current run, which collections its fields belong to.
Status refreshCollectionsOfAllTables(PrViewer& viewer);

} // namespace tavix
