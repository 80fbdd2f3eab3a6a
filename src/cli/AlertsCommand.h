#pragma once

#include "cli/AlertEdits.h"
#include "cli/AlertLists.h"
#include "cli/Command.h"
#include "cli/RunChoice.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

/// `tavix alerts`: the alerts of a job and which of them a run raises; tries alerts on earlier runs, mutes them and
/// keeps those of users.
class AlertsCommand final : public Command {
  public:
    CLI::App* declare(CLI::App& program) override;
    void run(const CommonOptions& options) override;

  private:
    void declareTrials(CLI::App& command);
    void declareEdits(CLI::App& command);
    void checkArguments() const;
    void checkPartners() const;
    [[nodiscard]] std::vector<AlertState> readAlerts(Session& session) const;
    /// Those that the options choose.
    [[nodiscard]] std::vector<AlertState> chosen(std::vector<AlertState> alerts) const;
    void list(Session& session, const CommonOptions& options) const;
    void add(Session& session, const CommonOptions& options) const;
    void tryTyped(Session& session, const CommonOptions& options) const;
    void tryStored(Session& session, const CommonOptions& options) const;
    void writeEntries(Session& session, const CommonOptions& options) const;
    void useOne(Session& session, const CommonOptions& options) const;

    RunChoice m_runChoice;
    std::optional<std::string> m_table;
    std::string m_failAt;
    bool m_raised = false;
    bool m_all = false;
    std::optional<int> m_alert;
    bool m_isBackTest = false;
    std::optional<std::string> m_try;
    std::optional<std::string> m_add;
    bool m_isExport = false;
    std::optional<std::string> m_mute;
    int m_muteRuns = 0;
    std::optional<std::string> m_until;
    bool m_isUnmute = false;
    std::optional<std::string> m_note;
    bool m_isRemove = false;
    bool m_isSure = false;
};

} // namespace tavix::cli
