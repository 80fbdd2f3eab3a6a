#pragma once

#include "findings/Finding.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A finding of a run with the texts that users read.
struct FindingEntry {
    int tableId = -1;
    int fieldId = 0; ///< 0: about the table
    std::string table; ///< as shown
    std::string field; ///< empty: about the table
    std::string code;
    std::string title; ///< the code, if a later version found it
    findings::Likelihood likelihood = findings::Likelihood::Possible;
    std::int64_t values = 0; ///< distinct values; 0 if it is not about values
    std::int64_t rows = 0;   ///< 0 if it is not about rows
    double share = 0;        ///< rows in percent of those of the table
    std::string detail;
    std::string condition; ///< over `Value`, true for exactly these values; empty if there is no such
    std::string sentence;  ///< what was found: "Blanks at the ends: 2 values in 12 rows (0.50 %)"
    std::string meaning;   ///< one sentence: what it may mean; empty for a code of a later version
    std::string advice;    ///< what to do
    std::string rule;      ///< the condition of a rule that watches it; empty if a rule cannot
    std::string watch;     ///< what watches it, in words
    struct Dismissal {
        std::string reason;
        std::string user;
        double date = 0; ///< base/LibraryDate.h
    };
    std::optional<Dismissal> dismissal{};

    [[nodiscard]] bool isAtLeast(findings::Likelihood least) const { return likelihood >= least; }
};

struct FindingList {
    bool isExamined = false; ///< false for a run of an older version, which found nothing because it did not look
    // The most certain first, then those of the largest share of the rows.
    std::vector<FindingEntry> open;
    std::vector<FindingEntry> dismissed;
};

// The findings of the current run, of one of its tables, and of a field of one of its tables. Throw GenException when
// the repository fails.
[[nodiscard]] FindingList readFindings(PrViewer& viewer);
[[nodiscard]] FindingList readTableFindings(PrViewer& viewer, int tableId);
[[nodiscard]] FindingList readFieldFindings(PrViewer& viewer, int fieldId);

} // namespace tavix
