#pragma once

namespace tavix::cli {

/// Runs the program `tavix` with its arguments and returns its exit code. The process's locale is not touched.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv);

} // namespace tavix::cli
