#pragma once

#include "cli/Command.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavix::cli {

class Session;

/// `tavix compare`: the differences between two runs of a job.
class CompareCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    struct Runs {
        int before;
        int after;
    };
    [[nodiscard]] Runs chooseRuns(Session& session) const;

    std::optional<std::string> m_job;
    std::optional<std::string> m_table;
    std::vector<int> m_runs;
    std::int64_t m_top = 10;
};

} // namespace tavix::cli
