#pragma once

#include "cli/Command.h"

namespace tavix::cli {

/// `tavix jobs`: every job of the repository.
class JobsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;
};

} // namespace tavix::cli
