#include "cli/JobsCommand.h"

#include "access/Layouts.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"

#include <CLI/App.hpp>

namespace tavix::cli {

CLI::App* JobsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("jobs", "List the jobs of a repository");
    command->footer("Examples:\n  tavix jobs -R profile.tavix\n  tavix jobs -R profile.tavix --format json");
    return command;
}

void JobsCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    Listing listing(options);
    listing.begin({"jobs",
                   "Jobs",
                   {{"job", "Job"},
                    {"runs", "Runs", Column::Kind::Number},
                    {"last_run", "Last run", Column::Kind::Number},
                    {"last_run_date", "Date"},
                    {"description", "Description"}}});
    const ProfileCursorHandle jobs = session.checked(session.viewer().getReports());
    while (jobs->next()) {
        const bool hasRun = !jobs->isColumnNull(layout::ReportLastRunId);
        listing.row(Row{jobs->getColumnValue(layout::ReportName), jobs->getColumnInt(layout::ReportRunCount),
                        hasRun ? KvbDatavar(jobs->getColumnInt(layout::ReportLastRunId)) : KvbDatavar(),
                        hasRun ? shownDate(jobs->getColumnDouble(layout::ReportLastRunDate)) : KvbDatavar(),
                        KvbString(jobs->getColumnValue(layout::ReportDescription).view())});
    }
    listing.end();
    listing.finish();
}

} // namespace tavix::cli
