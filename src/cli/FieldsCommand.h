#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <string>

namespace tavix::cli {

/// `tavix fields`: the fields of a table with their main metrics.
class FieldsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    RunChoice m_runChoice;
    std::string m_table;
};

} // namespace tavix::cli
