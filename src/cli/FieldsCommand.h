#pragma once

#include "cli/Command.h"

#include <optional>

namespace tavix::cli {

/// `tavix fields`: the fields of a table with their main figures.
class FieldsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::optional<std::string> m_job;
    std::optional<int> m_run;
    std::string m_table;
};

} // namespace tavix::cli
