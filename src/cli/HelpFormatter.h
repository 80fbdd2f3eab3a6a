#pragma once

#include <CLI/App.hpp>
#include <CLI/Formatter.hpp>

#include <string>

namespace tavix::cli {

/// Folds help texts to at most 100 columns.
class HelpFormatter final : public CLI::Formatter {
  public:
    HelpFormatter();
    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};

} // namespace tavix::cli
