#pragma once

#include <span>

/// The scripts of schemaSteps(). A published script is never changed.
namespace tavix::repository {

/// Creates version 1.
extern const char* const kFirstSchema;
/// From version 1 to 2, from 2 to 3, and so on.
extern const std::span<const char* const> kSchemaChanges;

} // namespace tavix::repository
