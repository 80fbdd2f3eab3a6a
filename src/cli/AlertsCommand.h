#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <optional>
#include <string>

namespace tavix::cli {

/// `tavix alerts`: the alerts of a job and which of them a run raises.
class AlertsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    RunChoice m_runChoice;
    std::optional<std::string> m_table;
    std::string m_failAt;
    bool m_raised = false;
};

} // namespace tavix::cli
