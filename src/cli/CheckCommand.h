#pragma once

#include "cli/Command.h"

namespace tavix::cli {

/// `tavix check`: verifies the checksums and the packed values of a repository.
class CheckCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;
};

} // namespace tavix::cli
