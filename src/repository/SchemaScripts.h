#pragma once

#include <span>

/// The SQL behind schemaSteps(). A published script is never changed.
namespace tavix::repository {

/// Makes version 1.
extern const char* const kFirstSchema;
/// From version 1 to 2, 2 to 3 and so on.
extern const std::span<const char* const> kSchemaChanges;

} // namespace tavix::repository
