#pragma once

#include "cli/Command.h"

#include <optional>

namespace tavix::cli {

/// `tavix runs`: the runs of a job.
class RunsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::optional<std::string> m_job;
};

} // namespace tavix::cli
