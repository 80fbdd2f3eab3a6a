#pragma once

#include "base/AlertDefinition.h"

#include <string>
#include <vector>

namespace tavix {
class PrViewer;
}

namespace tavix::cli {

struct CommonOptions;

/// An alert to try on the runs of its job.
struct TrialAlert {
    int id = -1; ///< -1: it is not stored
    std::string table;
    std::string condition;
    AlertDefinition definition;
};

/// Lists in how many of the runs up to the current one each alert would have been raised. A single alert is listed run
/// by run, with the limits that the history suggests.
void listTrials(const CommonOptions& options, PrViewer& viewer, const std::vector<TrialAlert>& alerts);

} // namespace tavix::cli
