#pragma once

#include <sys/types.h>

#include <csignal>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavix::testing {

struct Outcome {
    int exitCode = -1; ///< -1 when a signal ended it
    int signal = 0;
    std::string out;
    std::string err;
};

/// A running program with pipes on its standard output and error, and an empty standard input.
class Program {
  public:
    /// Throws std::runtime_error when it cannot be started.
    explicit Program(std::vector<std::string> command);
    /// Kills the program if it is still running.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void send(int signalNumber) const;
    /// Waits until the program has installed a handler for the signal. Throws std::runtime_error when it ends before.
    void waitForHandler(int signalNumber) const;
    /// Waits until the program has read that many bytes from files of any kind. Throws std::runtime_error when it ends
    /// before.
    void waitUntilRead(std::uint64_t bytes) const;
    /// Closes the pipe on its standard output, as `head` does.
    void closeOutput();
    /// Reads all output and waits for the program to end.
    [[nodiscard]] Outcome wait();

  private:
    /// Polls `happened`.
    void waitUntil(const std::function<bool()>& happened) const;

    pid_t m_process = -1;
    int m_out = -1;
    int m_err = -1;
};

/// Runs `tavix` with these arguments and waits for it to end.
[[nodiscard]] Outcome runTavix(std::vector<std::string> arguments);
/// The arguments with the path of `tavix` in front.
[[nodiscard]] std::vector<std::string> tavixCommand(std::vector<std::string> arguments);

} // namespace tavix::testing
