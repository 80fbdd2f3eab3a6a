#pragma once

#include "cli/Command.h"

#include <cstdint>
#include <optional>

namespace tavix::cli {

/// `tavix rules`: the business rules of a run, or the rows that violate one of them.
class RulesCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    std::optional<std::string> m_table;
    std::optional<std::string> m_rule;
    std::optional<std::int64_t> m_limit;
    std::optional<std::string> m_job;
    std::optional<int> m_run;
};

} // namespace tavix::cli
