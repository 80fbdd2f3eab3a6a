#include "cli/DeleteHistoryCommand.h"

#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/RunChoice.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

/// The runs to delete, oldest first. Throws when no run would be left, or when there is no run `upTo`.
std::vector<RunInfo> chooseRuns(std::vector<RunInfo> runs, std::optional<int> upTo, std::optional<int> keep) {
    std::sort(runs.begin(), runs.end(), [](const RunInfo& a, const RunInfo& b) { return a.id < b.id; });
    std::size_t count = 0;
    if (upTo) {
        const auto last = std::find_if(runs.begin(), runs.end(), [&](const RunInfo& run) { return run.id == *upTo; });
        if (last == runs.end())
            throw CommandError(ExitCode::Usage, fmt::format("the job has no run {}; see \"tavix runs\"", *upTo));
        count = static_cast<std::size_t>(last - runs.begin()) + 1;
        if (count == runs.size())
            throw CommandError(ExitCode::Usage, "at least one run of a job must stay");
    } else {
        const auto kept = static_cast<std::size_t>(keep.value_or(1));
        count = runs.size() > kept ? runs.size() - kept : 0;
    }
    runs.resize(count);
    return runs;
}

void listRuns(Listing& listing, const std::vector<RunInfo>& runs) {
    listing.begin({"deleted_runs",
                   "Deleted runs",
                   {{"run", "Run", Column::Kind::Number}, {"date", "Date"}, {"description", "Description"}}});
    for (const RunInfo& run : runs)
        listing.row(Row{run.id, shownDate(run.date), run.description});
    listing.end();
    listing.finish();
}

} // namespace

CLI::App* DeleteHistoryCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("delete-history", "Delete old runs of a job permanently");
    addJobChoice(*command, m_job);
    constexpr const char* kWhich = "Which runs (one of these)";
    command->add_option("--up-to", m_upTo, "Delete this run and all before it")
        ->type_name("RUN")
        ->transform(wholeNumber(1, kMostRun))
        ->group(kWhich);
    command->add_option("--keep", m_keep, "Keep the latest N runs, delete the others")
        ->type_name("N")
        ->transform(wholeNumber(0, kMostRun))
        ->group(kWhich);
    command->add_flag("-y,--yes", m_yes, "Do not ask");
    command->footer("At least one run is kept. Lists the deleted runs.\n\n"
                    "Examples:\n"
                    "  tavix delete-history -R profile.tavix --job sales --keep 10\n"
                    "  tavix delete-history -R profile.tavix --up-to 7 --yes");
    return command;
}

void DeleteHistoryCommand::run(const CommonOptions& options) {
    if (m_upTo.has_value() == m_keep.has_value())
        throw CommandError(ExitCode::Usage, "which runs? Say either --up-to RUN or --keep N");
    if (m_keep && *m_keep < 1)
        throw CommandError(ExitCode::Usage, "at least one run of a job must stay");
    Session session(options.repository);
    session.selectJob(m_job);
    const std::vector<RunInfo> runs = chooseRuns(session.runs(), m_upTo, m_keep);
    Listing listing(options);
    if (runs.empty()) {
        say("there is nothing to delete");
        listRuns(listing, runs);
        return;
    }
    const std::string which = runs.size() == 1 ? fmt::format("run {} of job \"{}\"", runs.front().id, session.jobName())
                                               : fmt::format("{} runs of job \"{}\" ({} to {})", runs.size(),
                                                             session.jobName(), runs.front().id, runs.back().id);
    if (!m_yes) {
        if (!canAsk())
            throw CommandError(
                ExitCode::Usage,
                fmt::format("this deletes {} and there is no terminal to ask on: confirm with --yes", which));
        if (!askYesNo(fmt::format("Delete {}?", which)))
            throw CommandError(ExitCode::Cancelled, "nothing was deleted");
    }
    session.check(session.viewer().deleteJobs(-1, runs.back().id, -1));
    say(fmt::format("deleted {}", which));
    listRuns(listing, runs);
}

} // namespace tavix::cli
