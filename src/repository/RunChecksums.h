#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <string>
#include <string_view>
#include <vector>

/// Checksums over the rows of a run, to detect damaged numbers. Packed blocks have their own.
/// docs/formats/repository.md lists the rows covered.
namespace tavix::repository {

/// A part of a run with a checksum of its own.
enum class RunPart {
    Tables, ///< the run and its tables with their files; all other parts are of one table
    Log,    ///< the execution log, of the run
    Fields,
    Lists, ///< percentiles, outliers, histograms, and the index of a distribution's blocks
    Rules, ///< custom metrics and business rules with their row logs
};

/// The name for users: "list of tables".
[[nodiscard]] std::string_view runPartName(RunPart part);

struct RunPartKey {
    RunPart part = RunPart::Tables;
    int table = 0; ///< 0 for the parts of the run
};

/// Within the transaction that writes the run, after everything else.
[[nodiscard]] Status storeRunChecksums(sql::Connection& connection, int run);

/// The parts of a run that must have a checksum; none in a run of an older version.
[[nodiscard]] Result<std::vector<RunPartKey>> checkedParts(sql::Connection& connection, int run);
/// Compares a part with its checksum. Reads all of its rows.
[[nodiscard]] Result<bool> isPartSound(sql::Connection& connection, int run, const RunPartKey& key);

/// For opening a run: checks its tables, and their fields if these are few. Returns a warning that the run is damaged,
/// or an empty text. Fails if it cannot be read.
[[nodiscard]] Result<std::string> describeDamage(sql::Connection& connection, int run);

} // namespace tavix::repository
