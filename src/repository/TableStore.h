#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "repository/RuleStore.h"
#include "sql/Connection.h"

/// Stores the tables of a run and their fields, whose identities exist already.
namespace tavix::repository {

// Within the caller's transaction.

[[nodiscard]] Status storeTable(sql::Connection& connection, const PlaceInRun& place, const TableFacts& facts,
                                int fields);
/// The files that the table was read from, and their offset index.
[[nodiscard]] Status storeFiles(sql::Connection& connection, int run, int table, const TableFacts& facts);
/// The field with its metrics.
[[nodiscard]] Status storeField(sql::Connection& connection, int run, int table, int field, const FieldFacts& facts);
/// Percentiles, outliers, distributions and hashes of a stored field.
[[nodiscard]] Status storeFieldLists(sql::Connection& connection, int run, int field, const FieldFacts& facts);
/// Distributions and hashes.
[[nodiscard]] Status storePackedField(sql::Connection& connection, int run, int field, PackedField& packed);

} // namespace tavix::repository
