#pragma once

#include "cli/Command.h"
#include "cli/FieldLists.h"
#include "cli/RunChoice.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

/// `tavix show`: a run, the metrics of a table, or everything about a field.
class ShowCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    void checkChoice(const CommonOptions& options) const;
    void showRun(Session& session, const CommonOptions& options) const;
    void showTable(Session& session, const CommonOptions& options) const;
    void showField(Session& session, const CommonOptions& options) const;
    [[nodiscard]] std::int64_t limitOr(std::int64_t limit) const;

    RunChoice m_runChoice;
    std::optional<std::string> m_subject;
    std::optional<std::string> m_table;
    std::optional<std::string> m_field;
    std::optional<std::string> m_filter;
    std::optional<std::int64_t> m_limit;
    bool m_metrics = false;
    bool m_types = false;
    bool m_values = false;
    bool m_patterns = false;
    bool m_percentiles = false;
    bool m_outliers = false;
    bool m_customMetrics = false;
    bool m_rules = false;
    bool m_log = false;
};

} // namespace tavix::cli
