#include "cli/TablesCommand.h"

#include "cli/Session.h"

#include <CLI/App.hpp>

namespace tavix::cli {

namespace {

std::string_view kindWord(TableKind kind) {
    switch (kind) {
    case TableKind::Query:
        return "query";
    case TableKind::Filter:
        return "filter";
    case TableKind::Plain:
        break;
    }
    return "table";
}

} // namespace

std::vector<Column> recordColumns() {
    return {{"records", "Records", Column::Kind::Number},
            {"processed_records", "Processed", Column::Kind::Number},
            {"damaged_records", "Damaged", Column::Kind::Number}};
}

void listTables(Session& session, Listing& listing) {
    Section section{
        "tables", "Tables", {{"table", "Table"}, {"kind", "Kind"}, {"fields", "Fields", Column::Kind::Number}}};
    const std::vector<Column> records = recordColumns();
    section.columns.insert(section.columns.end(), records.begin(), records.end());
    section.columns.push_back({"data_source", "Data source"});
    section.columns.push_back({"sampled", "Sampled"});
    listing.begin(section);
    for (const TableIdentity& table : session.tables())
        listing.row(Row{table.displayName(), std::string(kindWord(table.kind)), table.fields, table.totalRecords,
                        table.processedRecords, table.damagedRecords, table.dataSource,
                        std::string(table.isSample ? "yes" : "no")});
    listing.end();
}

CLI::App* TablesCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("tables", "List the tables of a run");
    m_runChoice.declare(*command);
    command->footer("Examples:\n"
                    "  tavix tables -R profile.tavix\n"
                    "  tavix tables -R profile.tavix --job sales --run 3 --format json");
    return command;
}

void TablesCommand::run(const CommonOptions& options) {
    Session session(options.repository);
    m_runChoice.select(session);
    Listing listing(options);
    listTables(session, listing);
    listing.finish();
}

} // namespace tavix::cli
