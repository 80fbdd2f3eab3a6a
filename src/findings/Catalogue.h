#pragma once

#include "findings/Finding.h"

#include <span>
#include <string>
#include <string_view>

/// Everything that profiles can give away. docs/findings.md shows the table to users.
namespace tavix::findings {

struct CatalogueEntry {
    std::string_view code; ///< stable: repositories and scripts know it
    std::string_view title;
    std::string_view likelihood; ///< a word of likelihoodWord(), or what it depends on
    std::string_view when;       ///< when exactly it is raised
    std::string_view meaning;    ///< one sentence: what it may mean
    std::string_view advice;     ///< what to do
    /// The rule or alert to watch it from now on. Empty: a rule with the negated condition.
    std::string_view watch;
};

/// In the order of docs/findings.md.
[[nodiscard]] std::span<const CatalogueEntry> catalogue();
/// The entry with this code; null outside the catalogue, as for a code of a later version.
[[nodiscard]] const CatalogueEntry* findEntry(std::string_view code);

/// The condition of a business rule over the field that the values of a finding violate and null passes:
/// "isnull(`zip`) or not (...)". `condition`: over `Value`, not empty.
[[nodiscard]] std::string ruleFor(std::string_view condition, std::string_view field);

} // namespace tavix::findings
