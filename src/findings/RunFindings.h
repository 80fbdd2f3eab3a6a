#pragma once

#include "findings/Finding.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Findings that need several fields of a run, or the run before.
namespace tavix::findings {

/// The figures that a run keeps of a field once the field is stored.
struct FieldSummary {
    std::string table;  ///< as shown
    std::string source; ///< the same for a table and what is filtered from it
    std::string name;
    char typeCode = 0;
    std::string kind;    ///< how it is read: the word of its type, or of what most of its values fit; empty for text
    std::string pattern; ///< that nearly all of its values have; empty without such
    Hits shown;          ///< values that are neither null, empty nor blank
    std::optional<std::int64_t> decimals{}; ///< of reals
    std::optional<std::int64_t> lastDate{}; ///< of dates, in units of base/DateTicks.h
};

struct FoundIn {
    std::size_t field = 0; ///< its index
    Finding finding;
};
/// Fields of the same name, ignoring case, that differ between tables of the run.
[[nodiscard]] std::vector<FoundIn> findDifferences(std::span<const FieldSummary> fields);

/// A field as the run before had it.
struct EarlierField {
    char typeCode = 0;
    std::optional<std::int64_t> decimals{};
    std::optional<std::int64_t> lastDate{};
    std::int64_t moment = 0; ///< when that run began
    std::uint64_t rows = 0;  ///< that are not null
};
/// Findings about changes of a field since the run before. Put them in place of findings with the same codes.
[[nodiscard]] std::vector<Finding> findChanges(const FieldSummary& field, const EarlierField& before, std::int64_t now);

/// The pattern that at least 95 % of the values have; see FieldSummary.
class ValueDetectors;
[[nodiscard]] std::string usualPattern(const ValueDetectors& values);

} // namespace tavix::findings
