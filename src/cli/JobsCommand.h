#pragma once

#include "cli/Command.h"

namespace tavix::cli {

/// `tavix jobs`: the jobs of a repository.
class JobsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;
};

} // namespace tavix::cli
