#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <string>
#include <string_view>
#include <vector>

/// Checksums over the rows of a run, so that a bit that flips in a figure is noticed. Packed blocks have their own.
/// docs/formats/repository.md says which rows are covered.
namespace tavix::repository {

/// A part of what a run stores, with a checksum of its own.
enum class RunPart {
    Tables, ///< the run and its tables with their files; all others are of one table
    Log,    ///< the execution log, of the run
    Fields,
    Lists, ///< percentiles, outliers, and where the blocks of a distribution lie
    Rules, ///< custom metrics and business rules with their row logs
};

/// What a user calls it: "list of tables".
[[nodiscard]] std::string_view runPartName(RunPart part);

struct RunPartKey {
    RunPart part = RunPart::Tables;
    int table = 0; ///< 0 for the parts of the run
};

/// Within the transaction that writes the run, once all of it is written.
[[nodiscard]] Status storeRunChecksums(sql::Connection& connection, int run);

/// The parts of a run that have to have a checksum; none in a run of an older version.
[[nodiscard]] Result<std::vector<RunPartKey>> checkedParts(sql::Connection& connection, int run);
/// Whether one of these is what was stored. Reads all of its rows.
[[nodiscard]] Result<bool> isPartSound(sql::Connection& connection, int run, const RunPartKey& key);

/// For opening a run: checks its tables, and their fields when they are few. Says that the run is damaged; empty when
/// that is not known. An error when it cannot be looked at.
[[nodiscard]] Result<std::string> describeDamage(sql::Connection& connection, int run);

} // namespace tavix::repository
