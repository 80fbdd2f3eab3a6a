#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <string_view>

/// Chart definitions: a chart of a table or of a category, with named text properties. All fail for an id that does not
/// exist.
namespace tavix::repository {

// Creates a chart, or changes the one with the id `chart` unless that is -1, and returns its id.
[[nodiscard]] Result<int> putTableChart(sql::Connection& connection, int chart, int table, std::string_view name,
                                        std::string_view description);
[[nodiscard]] Result<int> putCategoryChart(sql::Connection& connection, int chart, int category, std::string_view name,
                                           std::string_view description);
[[nodiscard]] Status deleteChart(sql::Connection& connection, int chart);
[[nodiscard]] Status clearChartProperties(sql::Connection& connection, int chart);
[[nodiscard]] Status addChartProperty(sql::Connection& connection, int chart, std::string_view name, int position,
                                      std::string_view value);

} // namespace tavix::repository
