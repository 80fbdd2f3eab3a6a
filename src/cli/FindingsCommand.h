#pragma once

#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <optional>
#include <string>

namespace tavix {
struct FindingReport;
}

namespace tavix::cli {

class Session;

/// `tavix findings`: what the profiles of a run give away; dismisses and restores findings.
class FindingsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    void checkArguments() const;
    [[nodiscard]] FindingReport read(Session& session) const;
    void dismiss(Session& session, const FindingReport& list) const;
    void list(const CommonOptions& options, const FindingReport& list) const;

    RunChoice m_runChoice;
    std::optional<std::string> m_subject;
    std::optional<std::string> m_table;
    std::optional<std::string> m_field;
    std::string m_failAt;
    std::optional<std::string> m_dismiss;
    std::optional<std::string> m_reason;
    std::optional<std::string> m_restore;
    bool m_dismissed = false;
};

} // namespace tavix::cli
