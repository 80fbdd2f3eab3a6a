#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "job/JobDescription.h"
#include "profiling/EmptyFiles.h"
#include "source/Credentials.h"
#include "source/RowReader.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// What a watcher is told, some ten times a second.
struct ProgressState {
    std::string table;
    std::size_t tableIndex = 0;
    std::size_t tableCount = 0;
    std::int64_t rows = 0;      ///< of this table so far
    std::int64_t bytesDone = 0; ///< of all tables
    std::int64_t bytesTotal = 0;
    double seconds = 0; ///< since the run began
    enum class Phase {
        Reading,
        Counting, ///< computing figures
        Waiting,  ///< for another program that writes to the repository
        Storing,
    } phase = Phase::Reading;
};

class ProgressWatcher {
  public:
    virtual ~ProgressWatcher() = default;
    /// False cancels the run; nothing of it is kept.
    virtual bool progress(const ProgressState& state) = 0;
};

struct TableOutcome {
    std::string name;
    std::string_view place = "Line"; ///< what the number of a damaged row counts
    std::int64_t rows = 0;           ///< that were profiled, of a filtered table those that passed
    std::int64_t rowsOfSource = 0;   ///< that were read; more than were profiled of a sample and of a filtered table
    std::string sample;              ///< which rows a sample took; empty for all
    std::size_t fields = 0;
    std::int64_t damagedRows = 0;
    std::vector<source::DamagedRow> damage; ///< the first ones
    std::vector<std::string> files;         ///< of a table of several: what the damage counts
    std::string encoding = "UTF-8";         ///< of the first file
    std::vector<std::string> remarks;       ///< on its expressions, with their places in the job file, and on its files
};

/// Whether keys, collections and the fields in expressions fit the tables that they speak of. A table of a database,
/// and one that cannot be opened, is passed over here; runJob says so, as it says all that this finds.
[[nodiscard]] Status checkFields(const job::JobDescription& job);

struct RunOutcome {
    bool cancelled = false;
    int jobId = -1;
    int runId = -1;
    double seconds = 0;
    std::vector<TableOutcome> tables;
    std::vector<EmptyFile> leftOut; ///< the run is stored without them
};

struct RunOptions {
    std::string description; ///< of the run
    ProgressWatcher* watcher = nullptr;
    const Clock* clock = nullptr; ///< the system's when null
    source::AskCredentials askCredentials{};
    unsigned threads = 0;   ///< 0: as many as the machine has cores
    std::size_t memory = 0; ///< bytes; 0: half of the machine's. What needs more goes to a temporary file
    /// Where that file lies, which has no name; empty: $TMPDIR, or else the folder of the repository.
    std::string spillFolder = {};
    /// Bytes of a file from which on it is noted where its values stand; smaller ones are read again as fast without.
    std::int64_t offsetIndexFrom = std::int64_t{4} << 20;
};

/// Profiles every table of the job and stores the result as one new run in the repository at `repositoryPath`, which
/// is made when it does not exist. On an error or a cancellation nothing of the run is kept; a repository that was made
/// for it stays, empty. Others may write to the repository while the tables are read; they have to wait only while the
/// figures of the last one are computed and the run is stored. Threads and memory change how long it takes, but no
/// figure. Empty files are left out, as long as there is another table.
[[nodiscard]] Result<RunOutcome> runJob(const job::JobDescription& job, const std::string& repositoryPath,
                                        const RunOptions& options = {});

} // namespace tavix::profiling
