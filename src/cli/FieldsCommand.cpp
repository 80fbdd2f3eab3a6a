#include "cli/FieldsCommand.h"

#include "cli/FieldLists.h"
#include "cli/Session.h"

#include <CLI/App.hpp>

namespace tavix::cli {

CLI::App* FieldsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("fields", "List the fields of a table with their main figures");
    command->add_option("-t,--table", m_table, "The table")->type_name("NAME")->required();
    m_runChoice.declare(*command);
    command->footer("Example:\n  tavix fields -R profile.tavix --table airports");
    return command;
}

void FieldsCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    m_runChoice.select(session);
    const TableEntry table = session.table(m_table);
    Listing listing(options);
    listMetrics(session, listing, table, MetricChoice::Main);
    listing.finish();
}

} // namespace tavix::cli
