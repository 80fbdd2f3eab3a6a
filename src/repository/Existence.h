#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace tavix::repository {

/// An error, "There is no <what> with the number <id>.", unless the statement, with `id` as its one parameter, has a
/// row.
[[nodiscard]] Status requireRow(sql::Connection& connection, std::string_view sql, int id, std::string_view what);

/// The first column of the one row of a statement.
[[nodiscard]] Result<std::int64_t> readNumber(sql::Connection& connection, std::string_view sql,
                                              std::initializer_list<std::int64_t> parameters);

// The common ones, in any run.
[[nodiscard]] Status requireTable(sql::Connection& connection, int table);
[[nodiscard]] Status requireField(sql::Connection& connection, int field);
[[nodiscard]] Status requireCollection(sql::Connection& connection, int collection);

/// Runs a statement that changes one row with this id; when it changed none, the error of requireRow().
[[nodiscard]] Status changeRow(sql::Connection& connection, sql::Statement& statement, int id, std::string_view what);

} // namespace tavix::repository
