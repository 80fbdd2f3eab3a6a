#pragma once

namespace tavix::cli {

/// Runs the program `tavix` with its arguments and returns its exit code. Leaves the locale of the process unchanged.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv);

} // namespace tavix::cli
