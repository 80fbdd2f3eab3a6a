#pragma once

#include <stdexcept>
#include <string>

namespace tavix::cli {

/// The exit codes of the program. Scripts rely on the numbers.
enum class ExitCode {
    Ok = 0,
    Alert = 1,     ///< done, and an alert is raised at the level that was asked for
    Usage = 2,     ///< wrong arguments or a wrong job file
    Source = 3,    ///< a file to profile, the repository or the output failed
    Cancelled = 4, ///< by the user; nothing was changed
    Partial = 4,   ///< a run was stored without its empty files
    NotTold = 5,   ///< a run was stored and raised alerts, but the command that tells of them failed
};

/// Ends the running command. CommandLine alone catches it, shows its text and turns it into the exit code.
class CommandError : public std::runtime_error {
  public:
    CommandError(ExitCode code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    [[nodiscard]] ExitCode code() const { return m_code; }

  private:
    ExitCode m_code;
};

/// The reader of standard output has closed the pipe, as `head` does. The program then ends silently, with success.
class OutputClosed {};

} // namespace tavix::cli
