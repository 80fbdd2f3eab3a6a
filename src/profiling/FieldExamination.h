#pragma once

#include "findings/OrderedValues.h"
#include "findings/RunFindings.h"
#include "findings/ValueDetectors.h"
#include "profiling/FieldProfile.h"
#include "repository/EarlierFields.h"
#include "repository/Facts.h"

#include <cstdint>
#include <string>

/// Between the room of findings and what a run stores.
namespace tavix::profiling {

[[nodiscard]] repository::FindingFacts factsOf(const findings::Finding& finding);

/// Sets the findings of a field from its facts, which must be complete, and from what its values gave away.
void examine(FieldProfile& field, const findings::ValueDetectors& values, const findings::OrderedFigures& ordered);

/// Adds what the field lost since the run before.
void addChanges(repository::FieldFacts& facts, const findings::FieldSummary& summary,
                const repository::EarlierField& before, std::int64_t now);

/// "shop|orders": the same for a table and what is filtered from it.
[[nodiscard]] std::string sourceOf(const repository::TableFacts& facts);

} // namespace tavix::profiling
