#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

/// Something that the profile of a field or table gives away, in the current run.
struct FindingRecord {
    /// Why a user has dismissed it, in all runs.
    struct Dismissal {
        std::string reason;
        std::string user;
        double date = 0; ///< of the library

        bool operator==(const Dismissal&) const = default;
    };

    int tableId = -1;
    std::string table; ///< as shown
    int fieldId = -1;  ///< -1: about the table
    std::string field;
    std::string code;   ///< of the catalogue
    int likelihood = 1; ///< 1 possible, 2 likely, 3 definite
    std::int64_t values = 0;
    std::int64_t rows = 0;
    std::string detail;    ///< what the figures say beyond the numbers; may be empty
    std::string condition; ///< an expression over `Value` that is true for exactly its values; empty without such
    std::optional<Dismissal> dismissal;

    /// As users read it; the code in words where the catalogue is of an older version than the run.
    [[nodiscard]] std::string title() const;
    /// Its possible meaning and the advice; "" where the catalogue does not know it.
    [[nodiscard]] std::string_view meaning() const;
    [[nodiscard]] std::string_view advice() const;
    /// "possible", "likely", "definite".
    [[nodiscard]] std::string_view likelihoodText() const;
    /// "customers.name", or the table alone.
    [[nodiscard]] std::string place() const;

    bool operator==(const FindingRecord&) const = default;
};

// The gravest first, dismissed ones among them; none for a run that did not look. Throw GenException when the
// repository fails.
[[nodiscard]] std::vector<FindingRecord> readFindings(PrViewer& viewer);
/// About the table and its fields.
[[nodiscard]] std::vector<FindingRecord> readTableFindings(PrViewer& viewer, int tableId);
[[nodiscard]] std::vector<FindingRecord> readFieldFindings(PrViewer& viewer, int fieldId);

/// "3 findings: 1 definite, 2 likely" of those that are not dismissed; "no findings".
[[nodiscard]] std::string findingCounts(const std::vector<FindingRecord>& findings);

} // namespace tavix
