#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <string_view>
#include <vector>

/// Custom metrics and business rules. Like tables and fields they have an identity of their own, which is the same in
/// every run: a table and a name make one. What they say stands by run.
namespace tavix::repository {

/// Where in a run something stands.
struct PlaceInRun {
    int run = -1;
    int table = -1;
    int position = 1; ///< among its like in the table, from 1
};

// Within the caller's transaction.
[[nodiscard]] Status storeCustomMetric(sql::Connection& connection, const PlaceInRun& place,
                                       const CustomMetricFacts& facts);
[[nodiscard]] Status storeBusinessRule(sql::Connection& connection, const PlaceInRun& place,
                                       const BusinessRuleFacts& facts);

/// The texts and nulls of a list as the row log stores it; an error when the text is no such list.
[[nodiscard]] Result<std::vector<KvbString>> readTextList(std::string_view stored);

} // namespace tavix::repository
