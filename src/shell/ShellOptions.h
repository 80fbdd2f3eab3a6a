#pragma once

#include <optional>
#include <string>

namespace tavix::shell {

enum class Scheme { System, Light, Dark };

/// The options of the command line.
struct ShellOptions {
    std::string repository;
    std::string job;
    Scheme scheme = Scheme::System;
};

/// Nothing when the program must exit at once with `exitCode`, after --help, --version or a wrong argument.
[[nodiscard]] std::optional<ShellOptions> parseShellOptions(int argc, const char* const* argv, int& exitCode);

} // namespace tavix::shell
