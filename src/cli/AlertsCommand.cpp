#include "cli/AlertsCommand.h"

#include "access/Layouts.h"
#include "base/LoginName.h"
#include "base/NoteText.h"
#include "cli/AlertTrials.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "report/AlertEntryText.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tavix::cli {

namespace {

constexpr std::int64_t kMostMutedRuns = 1'000'000;

JobNames jobNames(Session& session) {
    JobNames names;
    const ProfileCursorHandle jobs = session.checked(session.viewer().getReports());
    while (jobs->next())
        names[jobs->getColumnInt(layout::ReportId)] = jobs->getColumnValue(layout::ReportName).str();
    return names;
}

JobNames nameOf(const Session& session) {
    return {{session.jobId(), session.jobName()}};
}

void checkText(const std::string& text) {
    if (const Status checked = checkNote(tidyNote(text)); !checked)
        throw CommandError(ExitCode::Usage, checked.error().text);
}

} // namespace

CLI::App* AlertsCommand::declare(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("alerts", "List alerts and those that a run raises; try, add or mute one");
    command->add_option("-t,--table", m_table, "Only the alerts of this table")->type_name("NAME");
    command->add_flag("--raised", m_raised, "Only the alerts that are raised and not muted");
    command->add_flag("--all", m_all, "The alerts of all jobs, each checked against the latest run of its job");
    command
        ->add_option("--fail-at", m_failAt,
                     "warning or error: exit with code 1 if an alert of this level or a higher one is raised")
        ->type_name("LEVEL")
        ->transform(oneOf({"warning", "error"}));
    command->add_option("-a,--alert", m_alert, "This alert with all that is known of it, by its number in the list")
        ->type_name("N")
        ->transform(wholeNumber(1, kMostRun));
    m_runChoice.declare(*command);
    declareTrials(*command);
    declareEdits(*command);
    command->footer(
        "An alert is raised, quiet or muted, or cannot be judged because the run does not have the figure or\n"
        "no earlier run has one to compare with. An earlier run is checked against the present alerts.\n"
        "ENTRY is an alert as a job file has it, such as \"field: price, metric: Null Count, max: 0\"; each run\n"
        "of a job file replaces the alerts of the job, but leaves those that users add.\n\n"
        "Examples:\n"
        "  tavix alerts -R profile.tavix\n"
        "  tavix alerts -R profile.tavix --job sales --run 3 --raised --format json\n"
        "  tavix alerts -R profile.tavix -t sales --try \"field: price, metric: Mean, change: 10 %, runs: 5\"\n"
        "  tavix alerts -R profile.tavix -a 7 --mute \"The source is being repaired\" --until 2026-12-01");
    return command;
}

void AlertsCommand::declareTrials(CLI::App& command) {
    constexpr const char* kTrials = "Trying alerts on the runs of the job";
    command
        .add_flag("--back-test", m_isBackTest,
                  "In which runs the alerts, or the alert of --alert, would have been raised")
        ->group(kTrials);
    command.add_option("--try", m_try, "The same for an alert of --table that is not stored")
        ->type_name("ENTRY")
        ->group(kTrials);
}

void AlertsCommand::declareEdits(CLI::App& command) {
    constexpr const char* kEdits = "Alerts of users, mutes and notes";
    command.add_option("--add", m_add, "Add an alert to --table under your login name")
        ->type_name("ENTRY")
        ->group(kEdits);
    command.add_flag("--remove", m_isRemove, "Remove the alert of --alert, which a user has added")->group(kEdits);
    command.add_flag("-y,--yes", m_isSure, "Do not ask")->group(kEdits);
    command.add_flag("--export", m_isExport, "Write the alerts of users as a job file has them, table by table")
        ->group(kEdits);
    command
        .add_option("--mute", m_mute,
                    "Do not warn of the alert of --alert for this reason, from the run on that is shown")
        ->type_name("REASON")
        ->group(kEdits);
    command.add_option("--for", m_muteRuns, "Mute it for so many runs")
        ->type_name("RUNS")
        ->transform(wholeNumber(1, kMostMutedRuns))
        ->group(kEdits);
    command.add_option("--until", m_until, "Mute it for runs that start before this date")
        ->type_name("DATE")
        ->group(kEdits);
    command.add_flag("--unmute", m_isUnmute, "Warn of the alert of --alert again")->group(kEdits);
    command.add_option("--note", m_note, "Add a note to the alert of --alert under your login name")
        ->type_name("TEXT")
        ->group(kEdits);
}

void AlertsCommand::checkArguments() const {
    const std::array<std::pair<const char*, bool>, 8> actions{{{"--back-test", m_isBackTest},
                                                               {"--try", m_try.has_value()},
                                                               {"--add", m_add.has_value()},
                                                               {"--remove", m_isRemove},
                                                               {"--export", m_isExport},
                                                               {"--mute", m_mute.has_value()},
                                                               {"--unmute", m_isUnmute},
                                                               {"--note", m_note.has_value()}}};
    const char* first = nullptr;
    for (const auto& [name, isGiven] : actions) {
        if (!isGiven)
            continue;
        if (first)
            throw CommandError(ExitCode::Usage, fmt::format("{} and {} exclude each other", first, name));
        first = name;
    }
    if (m_all && (first || m_alert || m_runChoice.isGiven()))
        throw CommandError(ExitCode::Usage, fmt::format("--all lists the alerts of all jobs; it does not go with {}",
                                                        first     ? first
                                                        : m_alert ? "--alert"
                                                                  : "--job or --run"));
    if (first && (m_raised || !m_failAt.empty()) && !m_isBackTest)
        throw CommandError(ExitCode::Usage,
                           fmt::format("{} does not go with {}", m_raised ? "--raised" : "--fail-at", first));
    checkPartners();
}

void AlertsCommand::checkPartners() const {
    const bool isAboutOne = m_mute || m_isUnmute || m_note || m_isRemove;
    if (isAboutOne && !m_alert)
        throw CommandError(ExitCode::Usage, "which alert? Name it with --alert; \"tavix alerts\" lists the numbers");
    if ((m_try || m_add) && !m_table)
        throw CommandError(ExitCode::Usage, "an alert of which table? Name it with --table");
    if ((m_try || m_add || m_isExport) && m_alert)
        throw CommandError(ExitCode::Usage, fmt::format("--alert does not go with {}", m_try   ? "--try"
                                                                                       : m_add ? "--add"
                                                                                               : "--export"));
    if ((m_muteRuns > 0 || m_until) && !m_mute)
        throw CommandError(ExitCode::Usage, "--for and --until go with --mute");
    if (m_isSure && !m_isRemove)
        throw CommandError(ExitCode::Usage, "--yes goes with --remove");
    if (m_mute && tidyNote(*m_mute).empty())
        throw CommandError(ExitCode::Usage, "--mute needs a reason");
    for (const auto* text : {&m_mute, &m_note})
        if (*text)
            checkText(**text);
    if (m_until)
        (void)readUntil(*m_until); // throws
}

std::vector<AlertState> AlertsCommand::readAlerts(Session& session) const {
    return m_all ? readAllAlertStates(session.viewer()) : readAlertStates(session.viewer(), session.jobId());
}

std::vector<AlertState> AlertsCommand::chosen(std::vector<AlertState> alerts) const {
    if (m_table)
        std::erase_if(alerts, [&](const AlertState& alert) { return alert.table != *m_table; });
    if (m_raised)
        std::erase_if(alerts, [](const AlertState& alert) { return !alert.isRaised(); });
    return alerts;
}

void AlertsCommand::run(const CommonOptions& options) {
    checkArguments();
    Session session(options.repository);
    if (!m_all)
        m_runChoice.select(session);
    if (m_table && !m_all)
        m_table = session.table(*m_table).displayName();
    if (m_add)
        add(session, options);
    else if (m_try)
        tryTyped(session, options);
    else if (m_isExport)
        writeEntries(session, options);
    else if (m_alert)
        useOne(session, options);
    else if (m_isBackTest)
        tryStored(session, options);
    else
        list(session, options);
}

void AlertsCommand::list(Session& session, const CommonOptions& options) const {
    const std::vector<AlertState> all = readAlerts(session);
    if (!m_failAt.empty())
        sayIfNoAlert(all, session.jobName());
    const std::vector<AlertState> alerts = chosen(all);
    listAlerts(options, alerts, m_all ? jobNames(session) : nameOf(session));
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts(alerts, *level);
}

void AlertsCommand::add(Session& session, const CommonOptions& options) const {
    const std::vector<int> ids = addAlerts(session, readTypedAlerts(session, *m_add, *m_table));
    std::vector<AlertState> alerts = readAlerts(session);
    std::erase_if(alerts,
                  [&](const AlertState& alert) { return std::find(ids.begin(), ids.end(), alert.id) == ids.end(); });
    listAlerts(options, std::move(alerts), nameOf(session));
}

void AlertsCommand::tryTyped(Session& session, const CommonOptions& options) const {
    std::vector<TrialAlert> trials;
    for (TypedAlert& alert : readTypedAlerts(session, *m_try, *m_table))
        trials.push_back({-1, *m_table, std::move(alert.sentence), std::move(alert.definition)});
    listTrials(options, session.viewer(), trials);
}

void AlertsCommand::tryStored(Session& session, const CommonOptions& options) const {
    std::vector<TrialAlert> trials;
    for (const AlertState& alert : chosen(readAlerts(session)))
        if (alert.rule)
            trials.push_back({alert.id, alert.table, alert.condition(), alert.definition()});
    listTrials(options, session.viewer(), trials);
}

void AlertsCommand::writeEntries(Session& session, const CommonOptions& options) const {
    if (options.format != Format::Text)
        throw CommandError(ExitCode::Usage, "--export writes job YAML: leave out --format");
    std::vector<AlertState> alerts = chosen(readAlerts(session));
    std::erase_if(alerts, [](const AlertState& alert) { return !alert.isOfUser; });
    if (alerts.empty())
        say(fmt::format("the job \"{}\" has no alerts of users", session.jobName()));
    Output output(options.outputPath);
    output.write(alertEntriesText(alerts));
    output.commit();
}

void AlertsCommand::useOne(Session& session, const CommonOptions& options) const {
    const auto find = [&]() -> AlertState {
        for (AlertState& alert : readAlerts(session))
            if (alert.id == *m_alert)
                return std::move(alert);
        throw CommandError(ExitCode::Usage, fmt::format("the job \"{}\" has no alert {}", session.jobName(), *m_alert));
    };
    const AlertState alert = find();
    if (m_isBackTest) {
        if (!alert.rule)
            throw CommandError(ExitCode::Source, alert.sentence);
        listTrials(options, session.viewer(), {{alert.id, alert.table, alert.condition(), alert.definition()}});
        return;
    }
    if (m_isRemove) {
        removeAlert(session, alert, m_isSure);
        return;
    }
    if (m_mute)
        muteAlert(session, alert.id, {*m_mute, m_muteRuns, m_until});
    if (m_isUnmute) {
        if (!alert.mute)
            throw CommandError(ExitCode::Usage, fmt::format("alert {} is not muted", alert.id));
        session.check(session.viewer().unmuteAlert(alert.id));
    }
    if (m_note)
        session.check(session.viewer().createNewAlertNote(alert.id, loginName(), *m_note));
    const AlertState shown = find();
    showAlert(session, options, shown);
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts({shown}, *level);
}

} // namespace tavix::cli
