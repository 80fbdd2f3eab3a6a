#pragma once

#include "cli/Command.h"

namespace tavix::cli {

/// `tavix check`: whether a repository holds what was stored in it.
class CheckCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;
};

} // namespace tavix::cli
