#pragma once

#include "base/ColorScheme.h"

#include <optional>
#include <string>

namespace tavix::shell {

/// The options of the command line.
struct ShellOptions {
    std::string repository;
    std::string job;
    std::optional<ColorScheme> scheme; ///< nothing: the user's choice in the options
};

/// Nothing when the program must exit at once with `exitCode`, after --help, --version or a wrong argument.
[[nodiscard]] std::optional<ShellOptions> parseShellOptions(int argc, const char* const* argv, int& exitCode);

} // namespace tavix::shell
