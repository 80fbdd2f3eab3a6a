#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <functional>
#include <string>

namespace tavix::repository {

enum class Soundness {
    Sound,
    Damaged,
    Unknown, ///< no checksum is stored
};

/// A finding of a check about the file, a run, or a table in a run.
struct CheckFinding {
    int run = 0; ///< 0: of the file as a whole
    std::string job;
    std::string table; ///< display name; empty for the run itself
    Soundness state = Soundness::Sound;
    std::string problem; ///< what is damaged; empty if nothing is
};

/// Reads a whole repository: checks the file with SQLite, and each run against its checksums. Reports a finding for the
/// file, for each run and for each of its tables, several if more than one part is damaged. Fails only if the check
/// itself cannot continue; damage is not a failure.
[[nodiscard]] Status checkRepository(sql::Connection& connection,
                                     const std::function<void(const CheckFinding&)>& report);

} // namespace tavix::repository
