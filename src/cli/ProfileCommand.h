#pragma once

#include "cli/Command.h"
#include "profiling/JobRunner.h"

#include <optional>
#include <vector>

namespace tavix::cli {

/// `tavix profile`: profiles text files, or what a job file names, as a new run of a job.
class ProfileCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    [[nodiscard]] profiling::JobDescription describe() const;
    void checkAlerts(const std::string& repository, const profiling::RunOutcome& outcome) const;
    [[nodiscard]] profiling::JobDescription describeJobFile(const std::string& path) const;

    std::vector<std::string> m_files;
    std::string m_job;
    std::string m_delimiter;
    std::string m_description;
    std::string m_failAt;
    bool m_noHeader = false;
    bool m_dryRun = false;
};

/// The character that "--delimiter" means: itself, or one of comma, semicolon, tab, pipe, "\t". Nothing when it is none
/// that can separate cells.
[[nodiscard]] std::optional<char> parseDelimiter(const std::string& text);

} // namespace tavix::cli
