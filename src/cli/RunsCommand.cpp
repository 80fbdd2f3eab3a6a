#include "cli/RunsCommand.h"

#include "access/Layouts.h"
#include "cli/RunChoice.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"

#include <CLI/App.hpp>

namespace tavix::cli {

CLI::App* RunsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("runs", "List the runs of a job");
    addJobChoice(*command, m_job);
    command->footer(
        "\"Processed\" counts the records that were profiled in all tables, without those that a sample or a\n"
        "filter left out.\n\nExamples:\n"
        "  tavix runs -R profile.tavix --job sales\n"
        "  tavix runs -R profile.tavix --format json");
    return command;
}

void RunsCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    session.selectJob(m_job);
    Listing listing(options);
    listing.begin({"runs",
                   "Runs",
                   {{"run", "Run", Column::Kind::Number},
                    {"date", "Date"},
                    {"tables", "Tables", Column::Kind::Number},
                    {"processed_records", "Processed", Column::Kind::Number},
                    {"description", "Description"}}});
    const ProfileCursorHandle runs = session.checked(session.viewer().getJobs());
    while (runs->next())
        listing.row(Row{runs->getColumnInt(layout::JobRunId), shownDate(runs->getColumnDouble(layout::JobDate)),
                        runs->getColumnInt64(layout::JobTables), runs->getColumnInt64(layout::JobRecords),
                        KvbString(runs->getColumnValue(layout::JobDescription).view())});
    listing.end();
    listing.finish();
}

} // namespace tavix::cli
