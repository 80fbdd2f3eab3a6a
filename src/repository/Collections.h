#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <string_view>

/// Collections of fields, which span all jobs of a repository.
namespace tavix::repository {

/// Finds or creates the collection of this name. A non-empty description replaces the old one.
[[nodiscard]] Result<int> collectionIdentity(sql::Connection& connection, std::string_view name,
                                             std::string_view description, UtcTime now);
[[nodiscard]] Result<bool> collectionHolds(sql::Connection& connection, int collection, int field);
/// Appends the field, which the collection must not contain yet.
[[nodiscard]] Status addToCollection(sql::Connection& connection, int collection, int field);
/// Whether a collection contains a field of the table that is in no run any more.
[[nodiscard]] Result<bool> hasStaleFields(sql::Connection& connection, int table);
/// Removes those fields from their collections.
[[nodiscard]] Status removeStaleFields(sql::Connection& connection, int table);

} // namespace tavix::repository
