#pragma once

#include "base/Result.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::cli {

/// A program that is run to its end. No shell reads its arguments.
struct ChildProgram {
    std::vector<std::string> command;     ///< not empty; a program without a slash is searched in PATH
    std::vector<std::string> environment; ///< all of it, as "NAME=value"
    std::string input;                    ///< what it reads from standard input
    std::chrono::milliseconds limit{};    ///< then it is ended, with the programs that it started
};

/// Waits for the end of the program. What it prints goes to our standard error, since standard output has our result.
/// The error completes a sentence about the program: "it ended with exit code 3". An interruption ends the program too.
[[nodiscard]] Status runChild(const ChildProgram& child);

/// Whether runChild() would find a program to start.
[[nodiscard]] bool isProgram(const std::string& program);

/// Our environment without the variables whose names begin with `prefix`.
[[nodiscard]] std::vector<std::string> environmentWithout(std::string_view prefix);

} // namespace tavix::cli
