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

/// What a watcher is told about ten times a second.
struct ProgressState {
    std::string table;
    std::size_t tableIndex = 0;
    std::size_t tableCount = 0;
    std::int64_t rows = 0;      ///< of this table
    std::int64_t bytesDone = 0; ///< of all tables
    std::int64_t bytesTotal = 0;
    double seconds = 0; ///< since the run began
    enum class Phase {
        Reading,
        Counting, ///< computing metrics
        Waiting,  ///< for another program that writes to the repository
        Storing,
    } phase = Phase::Reading;
};

class ProgressWatcher {
  public:
    virtual ~ProgressWatcher() = default;
    /// Returns false to cancel the run; nothing of it is kept.
    virtual bool progress(const ProgressState& state) = 0;
};

struct TableOutcome {
    std::string name;
    std::string_view place = "Line"; ///< what the number of a damaged row refers to
    std::int64_t rows = 0;           ///< that were profiled; of a filtered table those that passed
    std::int64_t rowsOfSource = 0;   ///< that were read; more than were profiled when the table is sampled or filtered
    std::string sample;              ///< the sample in words; empty: all rows
    std::size_t fields = 0;
    std::int64_t damagedRows = 0;
    std::vector<source::DamagedRow> damage; ///< the first ones
    std::vector<std::string> files;         ///< of a table of several files, to which the damage refers
    std::string encoding = "UTF-8";         ///< of the first file
    std::vector<std::string> remarks; ///< on its expressions, with their positions in the job file, and on its files
};

/// Checks that keys, collections and expressions name fields that exist. Skips database tables and tables that cannot
/// be opened; runJob() reports those, and everything that this finds.
[[nodiscard]] Status checkFields(const job::JobDescription& job);

struct RunOutcome {
    bool cancelled = false;
    int jobId = -1;
    int runId = -1;
    double seconds = 0;
    std::vector<TableOutcome> tables;
    std::vector<EmptyFile> leftOut; ///< left out of the run
};

struct RunOptions {
    std::string description; ///< of the run
    ProgressWatcher* watcher = nullptr;
    const Clock* clock = nullptr; ///< the system's when null
    source::AskCredentials askCredentials{};
    unsigned threads = 0;   ///< 0: as many as the machine has cores
    std::size_t memory = 0; ///< bytes; 0: half of the machine's. The rest goes to a temporary file
    /// The folder of that file, which has no name. Empty: $TMPDIR, or else the folder of the repository.
    std::string spillFolder = {};
    /// Smallest file, in bytes, that gets an offset index; smaller ones are read again as fast without.
    std::int64_t offsetIndexFrom = std::int64_t{4} << 20;
};

/// Profiles every table of the job and stores the result as one new run in the repository at `repositoryPath`, creating
/// that if needed. On an error or a cancellation nothing of the run is kept; a repository that was created for it
/// stays, empty. Others can write to the repository while the tables are read; they wait only while the last metrics
/// are computed and the run is stored. Threads and memory change the duration, but no result. Empty files are left out
/// as long as another table remains.
[[nodiscard]] Result<RunOutcome> runJob(const job::JobDescription& job, const std::string& repositoryPath,
                                        const RunOptions& options = {});

} // namespace tavix::profiling
