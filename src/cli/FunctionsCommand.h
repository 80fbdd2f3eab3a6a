#pragma once

#include "cli/Command.h"

namespace tavix::cli {

/// `tavix functions`: the functions of the expression language. Needs no repository.
class FunctionsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;
};

} // namespace tavix::cli
