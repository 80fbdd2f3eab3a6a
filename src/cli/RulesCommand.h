#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <cstdint>
#include <optional>
#include <string>

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
    RunChoice m_runChoice;
};

} // namespace tavix::cli
