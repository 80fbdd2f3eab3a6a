#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>
#include <vector>

namespace tavix::testing {

struct Outcome {
    int exitCode = -1; ///< -1 when a signal ended it
    int signal = 0;
    std::string out;
    std::string err;
};

/// A program started with pipes behind its standard output and error, and an empty standard input.
class Program {
  public:
    /// Throws std::runtime_error when it cannot be started.
    explicit Program(std::vector<std::string> command);
    /// Kills it when it still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void send(int signalNumber) const;
    /// Waits until the program has a handler for the signal of its own.
    void waitForHandler(int signalNumber) const;
    /// Stops reading its standard output, as a pager does that is left.
    void closeOutput();
    /// Reads everything and waits for the end.
    [[nodiscard]] Outcome wait();

  private:
    pid_t m_process = -1;
    int m_out = -1;
    int m_err = -1;
};

/// Runs `tavix` with these arguments to its end.
[[nodiscard]] Outcome runTavix(std::vector<std::string> arguments);
/// Its path first.
[[nodiscard]] std::vector<std::string> tavixCommand(std::vector<std::string> arguments);

} // namespace tavix::testing
