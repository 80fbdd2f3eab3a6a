#pragma once

#include "base/Clock.h"

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace tavix::testing {

/// A small repository, the same every time it is built, for the tests of the viewer.
///
/// Job "Sales" has three runs (January 15, February 15 and March 15 of 2026, 10:00 UTC, the first two described as
/// "January" and "February") of these tables:
/// - "customers", catalog "crm", schema "public", source "Warehouse": fields of every type; "remark" has nulls only;
///   "balance" has percentiles, 3 low and 5 high outliers; "city" has 150 distinct values and nulls
/// - "suppliers", no catalog, schema "dbo"; its field "id" is matched against customers.id by a stored key analysis
/// - "orders", no catalog, no schema, sampled: 1,000 records of which 100 are processed
/// - "big orders": a query of several lines · "german customers": a filter on "customers"
/// - "late orders": a filter on a query, from the second run on
/// - "airports", source "/data/files": a text file with damaged rows
/// Job "Inventory" has one run of one table, "parts". Collections: "Amounts", "Customer keys".
struct SampleRepository {
    std::string path;
    int salesJob = -1;
    int inventoryJob = -1;
    std::vector<int> salesRuns; ///< oldest first
    int inventoryRun = -1;
    std::map<std::string, int> tables; ///< by display name
    std::map<std::string, int> fields; ///< by "table/field"
    std::map<std::string, int> collections;
    std::map<std::string, int> noteCategories; ///< "Decision", "Question"
    int chart = -1;                            ///< of "customers", with the properties TYPE and DATATYPE
    int redundancy = -1;                       ///< "Same people", of two fields

    /// Throws std::runtime_error if it cannot be built.
    [[nodiscard]] static SampleRepository build(const std::string& path);
    /// The start of the run with this number, from 0.
    [[nodiscard]] static UtcTime runTime(int number);
};

} // namespace tavix::testing
