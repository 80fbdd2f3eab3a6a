#include "cli/FieldsCommand.h"

#include "cli/FieldLists.h"
#include "cli/Session.h"

#include <CLI/App.hpp>

namespace tavix::cli {

CLI::App* FieldsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("fields", "List the fields of a table with their main metrics");
    command->add_option("-t,--table,TABLE", m_table, "The table")->type_name("NAME")->required();
    m_runChoice.declare(*command);
    command->footer("Examples:\n"
                    "  tavix fields -R profile.tavix airports\n"
                    "  tavix fields -R profile.tavix --table airports --format csv");
    return command;
}

void FieldsCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    m_runChoice.select(session);
    const TableIdentity table = session.table(m_table);
    saySample(table);
    Listing listing(options);
    listMetrics(session, listing, table, MetricChoice::Main);
    listing.finish();
}

} // namespace tavix::cli
