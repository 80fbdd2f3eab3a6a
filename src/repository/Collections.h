#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <string_view>

/// Collections of fields, which span all jobs of a repository.
namespace tavix::repository {

/// Finds the collection of this name or makes it. A description that is not empty replaces the old one.
[[nodiscard]] Result<int> collectionIdentity(sql::Connection& connection, std::string_view name,
                                             std::string_view description, UtcTime now);
[[nodiscard]] Result<bool> collectionHolds(sql::Connection& connection, int collection, int field);
/// Puts the field at the end. The collection must not hold it yet.
[[nodiscard]] Status addToCollection(sql::Connection& connection, int collection, int field);
/// Whether a collection holds a field of the table that no run has any more.
[[nodiscard]] Result<bool> hasStaleFields(sql::Connection& connection, int table);
/// Takes those fields out of their collections.
[[nodiscard]] Status removeStaleFields(sql::Connection& connection, int table);

} // namespace tavix::repository
