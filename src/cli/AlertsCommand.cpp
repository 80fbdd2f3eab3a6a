#include "cli/AlertsCommand.h"

#include "cli/AlertLists.h"
#include "cli/ArgumentChecks.h"
#include "cli/Session.h"

#include <CLI/App.hpp>

#include <algorithm>

namespace tavix::cli {

CLI::App* AlertsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("alerts", "List the alerts of a job, and which of them a run raises");
    command->add_option("-t,--table", m_table, "Only the alerts of this table")->type_name("NAME");
    command->add_flag("--raised", m_raised, "Only the alerts that are raised");
    command
        ->add_option("--fail-at", m_failAt,
                     "warning or error: exit with code 1 if an alert of this level or a higher one is raised")
        ->type_name("LEVEL")
        ->transform(oneOf({"warning", "error"}));
    m_runChoice.declare(*command);
    command->footer(
        "A job file defines alerts; each run of it replaces the alerts of the job. An alert is raised, quiet,\n"
        "or unknown because the run does not have the figure or no earlier run has one to compare with. The\n"
        "reference is the value that a change is measured from. An earlier run is checked against the\n"
        "present alerts.\n\n"
        "Examples:\n"
        "  tavix alerts -R profile.tavix\n"
        "  tavix alerts -R profile.tavix --job sales --run 3 --raised --format json");
    return command;
}

void AlertsCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    m_runChoice.select(session);
    std::vector<AlertState> alerts = readAlertStates(session.viewer(), session.jobId());
    if (!m_failAt.empty())
        sayIfNoAlert(alerts, session.jobName());
    if (m_table) {
        const std::string table = session.table(*m_table).displayName();
        std::erase_if(alerts, [&](const AlertState& alert) { return alert.table != table; });
    }
    if (m_raised)
        std::erase_if(alerts, [](const AlertState& alert) { return !alert.isRaised(); });
    listAlerts(options, alerts);
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts(alerts, *level);
}

} // namespace tavix::cli
