#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <string_view>
#include <vector>

/// Custom metrics and business rules. Like tables and fields they have an identity, by table and name, that is the same
/// in every run. Their definitions and results belong to a run.
namespace tavix::repository {

/// The position of something in a run.
struct PlaceInRun {
    int run = -1;
    int table = -1;
    int position = 1; ///< in the table's list of its kind, from 1
};

// Within the caller's transaction.
[[nodiscard]] Status storeCustomMetric(sql::Connection& connection, const PlaceInRun& place,
                                       const CustomMetricFacts& facts);
[[nodiscard]] Status storeBusinessRule(sql::Connection& connection, const PlaceInRun& place,
                                       const BusinessRuleFacts& facts);

/// Decodes a list of texts and nulls in the row log; fails if the text is not such a list.
[[nodiscard]] Result<std::vector<KvbString>> readTextList(std::string_view stored);

} // namespace tavix::repository
