#pragma once

#include "cli/Command.h"

#include <optional>

namespace tavix::cli {

/// `tavix delete-history`: deletes old runs of a job.
class DeleteHistoryCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::optional<std::string> m_job;
    std::optional<int> m_upTo;
    std::optional<int> m_keep;
    bool m_yes = false;
};

} // namespace tavix::cli
