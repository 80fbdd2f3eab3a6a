#pragma once

#include "cli/Listing.h"

#include <string>

namespace CLI {
class App;
}

namespace tavix::cli {

/// The options that every command has.
struct CommonOptions {
    std::string repository;
    std::string outputPath; ///< "" is standard output
    Format format = Format::Text;
    bool spreadsheet = false;
};

/// A command of the program: declares its arguments, and runs when the user chose it.
class Command {
  public:
    virtual ~Command() = default;

    /// Adds the command to the program with its arguments and its help. The command must outlive `program`.
    virtual CLI::App* declare(CLI::App& program) = 0;
    /// Throws CommandError, OutputClosed or GenException on failure.
    virtual void run(const CommonOptions& options) = 0;
};

} // namespace tavix::cli
