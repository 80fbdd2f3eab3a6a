#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tavix::cli {

class Session;

/// The highest number that a run can have.
inline constexpr std::int64_t kMostRun = std::numeric_limits<int>::max();

/// Adds the option --job.
void addJobChoice(CLI::App& command, std::optional<std::string>& job);

/// The options --job and --run, which choose the run that a command works on.
class RunChoice {
  public:
    /// Adds the options. This object must outlive the command.
    void declare(CLI::App& command);
    [[nodiscard]] bool isGiven() const { return m_job || m_run; }
    /// Makes the run the session's current one. Throws CommandError.
    void select(Session& session) const;

  private:
    std::optional<std::string> m_job;
    std::optional<int> m_run;
};

} // namespace tavix::cli
