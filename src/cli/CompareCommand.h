#pragma once

#include "cli/Command.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tavix::cli {

class Session;

/// `tavix compare`: the differences between two runs of a job.
class CompareCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    struct Runs {
        int before;
        int after;
    };
    using FieldNames = std::set<std::pair<std::string, std::string>>; ///< table and field
    [[nodiscard]] Runs chooseRuns(Session& session) const;
    void checkTable(Session& before, Session& after) const;
    /// The fields of either run with the name that the user gave.
    [[nodiscard]] FieldNames chooseFields(Session& before, Session& after) const;

    std::optional<std::string> m_job;
    std::optional<std::string> m_table;
    std::vector<int> m_runs;
    std::optional<std::string> m_field;
    std::optional<double> m_atLeast; ///< percent
    std::int64_t m_top = 10;
    bool m_all = false;
};

} // namespace tavix::cli
