#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <span>
#include <string_view>

/// Stored key analyses, and configurations of redundant data analyses. All work within the caller's transaction and
/// fail for an id that does not exist.
namespace tavix::repository {

/// The result of comparing the values of a field with those of another one in the same run.
struct KeyAnalysis {
    int run = -1;
    int field = -1;
    int otherField = -1;
    double matchPercent = 0;
    /// Values without a match, in the order of a distribution. Borrowed.
    std::span<const ValueCount> unmatched;
};

/// Replaces the analysis of this pair of fields, if there is one.
[[nodiscard]] Status storeKeyAnalysis(sql::Connection& connection, const KeyAnalysis& analysis);
[[nodiscard]] Status deleteKeyAnalysis(sql::Connection& connection, int run, int field, int otherField);

// Names of configurations are not empty and are distinct.
[[nodiscard]] Result<int> addRedundancy(sql::Connection& connection, std::string_view name,
                                        std::string_view description);
[[nodiscard]] Status updateRedundancy(sql::Connection& connection, int redundancy, std::string_view name,
                                      std::string_view description);
[[nodiscard]] Status deleteRedundancy(sql::Connection& connection, int redundancy);
/// Appends the field; it must not be in the configuration yet.
[[nodiscard]] Status addRedundancyField(sql::Connection& connection, int redundancy, int field);
[[nodiscard]] Status clearRedundancyFields(sql::Connection& connection, int redundancy);

} // namespace tavix::repository
