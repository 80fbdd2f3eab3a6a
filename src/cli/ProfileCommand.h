#pragma once

#include "cli/Command.h"
#include "cli/ReadingOptions.h"
#include "profiling/JobRunner.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

/// `tavix profile`: profiles text files, or the tables of a job file, as a new run of a job.
class ProfileCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    [[nodiscard]] job::JobDescription describe() const;
    void explain(const job::JobDescription& job, const CommonOptions& options) const;
    /// Says what the run raises, starts the command of the job, and throws as --fail-at asks for.
    void checkAlerts(const std::string& repository, const job::JobDescription& job,
                     const profiling::RunOutcome& outcome) const;
    [[nodiscard]] job::JobDescription describeJobFile(const std::string& path) const;

    std::vector<std::string> m_files;
    std::optional<std::string> m_job;
    std::optional<std::string> m_oneTable;
    std::string m_description;
    ReadingOptions m_reading;
    unsigned m_threads = 0;
    std::uint64_t m_memory = 0;
    std::string m_failAt;
    bool m_explain = false;
    bool m_dryRun = false;
};

} // namespace tavix::cli
