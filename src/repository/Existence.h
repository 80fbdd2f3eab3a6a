#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace tavix::repository {

/// Fails with "There is no <what> with the number <id>." unless the statement, with `id` as its only parameter, has a
/// row.
[[nodiscard]] Status requireRow(sql::Connection& connection, std::string_view sql, int id, std::string_view what);

/// The first column of a statement's first row.
[[nodiscard]] Result<std::int64_t> readNumber(sql::Connection& connection, std::string_view sql,
                                              std::initializer_list<std::int64_t> parameters);

// The most common ones, in any run.
[[nodiscard]] Status requireTable(sql::Connection& connection, int table);
[[nodiscard]] Status requireField(sql::Connection& connection, int field);
[[nodiscard]] Status requireCollection(sql::Connection& connection, int collection);

/// Runs a statement that changes one row with this id; if it changed none, fails like requireRow().
[[nodiscard]] Status changeRow(sql::Connection& connection, sql::Statement& statement, int id, std::string_view what);

} // namespace tavix::repository
