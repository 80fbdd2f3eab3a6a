#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <functional>
#include <string>

namespace tavix::repository {

enum class Soundness {
    Sound,
    Damaged,
    Unknown, ///< there is no checksum
};

/// What a check found of the file, of a run, or of a table in a run.
struct CheckFinding {
    int run = 0; ///< 0: of the file as a whole
    std::string job;
    std::string table; ///< display name; empty for the run itself
    Soundness state = Soundness::Sound;
    std::string problem; ///< what is damaged; empty unless something is
};

/// Reads all of a repository: whether SQLite finds the file sound, and whether each run has the rows and blocks that
/// were stored. Reports a finding for the file, for each run and for each of its tables, several for one that is
/// damaged at several places. An error when the check itself cannot go on; damage is none.
[[nodiscard]] Status checkRepository(sql::Connection& connection,
                                     const std::function<void(const CheckFinding&)>& report);

} // namespace tavix::repository
