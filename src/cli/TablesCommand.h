#pragma once

#include "cli/Command.h"

#include <optional>

namespace tavix::cli {

class Session;

/// Writes the tables of the current run as one list.
void listTables(Session& session, Listing& listing);

/// `tavix tables`: the tables of a run.
class TablesCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::optional<std::string> m_job;
    std::optional<int> m_run;
};

} // namespace tavix::cli
