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

/// The option --job, by which a command says of which job it speaks.
void addJobChoice(CLI::App& command, std::optional<std::string>& job);

/// The options --job and --run, by which a command says of which run it speaks.
class RunChoice {
  public:
    /// This must outlive the command.
    void declare(CLI::App& command);
    /// Makes the run the session's current one. Throws CommandError.
    void select(Session& session) const;

  private:
    std::optional<std::string> m_job;
    std::optional<int> m_run;
};

} // namespace tavix::cli
