#pragma once

#include "findings/Finding.h"
#include "report/FindingRecords.h"

#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A finding with the texts that lists, files and messages show.
struct FindingEntry {
    FindingRecord record;
    double share = 0;     ///< of its rows, in percent of those of the table
    std::string sentence; ///< what was found: "Blanks at the ends: 2 values in 12 rows (0.50 %)"
    std::string rule;     ///< the condition of a rule that watches it; empty if a rule cannot
    std::string watch;    ///< what watches it, in words; empty for a code of a later version

    [[nodiscard]] bool isAtLeast(findings::Likelihood least) const {
        return record.likelihood >= static_cast<int>(least);
    }
};

struct FindingReport {
    bool isExamined = false; ///< false for a run of an older version, which found nothing because it did not look
    // The most certain first, then those of the largest share of the rows.
    std::vector<FindingEntry> open;
    std::vector<FindingEntry> dismissed;
};

/// Of findings of the current run. Throws GenException when the repository fails.
[[nodiscard]] FindingReport reportFindings(PrViewer& viewer, std::vector<FindingRecord> records);

} // namespace tavix
