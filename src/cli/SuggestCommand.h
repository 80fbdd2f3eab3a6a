#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"
#include "report/RuleSuggestion.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

class Session;

/// `tavix suggest`: the rules that the figures of a run suggest, as a job file or as a list.
class SuggestCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    [[nodiscard]] SuggestionOptions choice(Session& session);
    void writeJobFile(Session& session, const CommonOptions& options, const std::vector<RuleSuggestion>& suggestions,
                      int tableId) const;

    std::optional<std::string> m_subject;
    std::optional<std::string> m_table;
    std::optional<std::string> m_field;
    std::vector<std::string> m_only;
    std::int64_t m_longestDomain = 0;
    double m_leastPatternPercent = 0;
    bool m_isList = false;
    bool m_force = false;
    RunChoice m_runChoice;
};

} // namespace tavix::cli
