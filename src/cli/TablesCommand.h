#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

namespace tavix::cli {

class Session;

/// The columns for the records of a table in every list of tables: all records of the source, the profiled ones and the
/// damaged ones.
[[nodiscard]] std::vector<Column> recordColumns();

/// Writes the tables of the current run as one list.
void listTables(Session& session, Listing& listing);

/// `tavix tables`: the tables of a run.
class TablesCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    RunChoice m_runChoice;
};

} // namespace tavix::cli
