#pragma once

#include <optional>
#include <string>

namespace tavix::shell {

enum class Scheme { System, Light, Dark };

/// What the command line asks for.
struct ShellOptions {
    std::string repository;
    std::string job;
    std::string screenshots; ///< a folder; empty shows windows
    Scheme scheme = Scheme::System;
};

/// Nothing when the program is to end at once with `exitCode`: help or version was shown, or the arguments are wrong.
[[nodiscard]] std::optional<ShellOptions> parseShellOptions(int argc, const char* const* argv, int& exitCode);

} // namespace tavix::shell
