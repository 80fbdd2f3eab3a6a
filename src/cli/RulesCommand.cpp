#include "cli/RulesCommand.h"

#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/FieldLists.h"
#include "cli/RuleLists.h"
#include "cli/Session.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

namespace tavix::cli {

CLI::App* RulesCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("rules", "List the business rules, or the rows that violate one");
    command->add_option("-t,--table,TABLE", m_table, "List only the rules of this table")->type_name("NAME");
    command->add_option("--rule", m_rule, "List the rows that violate this rule, as far as the run kept them")
        ->type_name("NAME");
    command->add_option("-n,--limit", m_limit, "The largest number of rows to list")
        ->type_name("N")
        ->transform(wholeNumber());
    m_runChoice.declare(*command);
    command->footer(
        "A row violates a rule unless the condition of the rule is true. The row number counts from 1 in the\n"
        "source, without the heading. It is followed by the fields of the table's key and the fields that\n"
        "the condition reads. The job file sets how many rows are kept for each rule.\n\n"
        "Examples:\n"
        "  tavix rules -R profile.tavix\n"
        "  tavix rules -R profile.tavix --table orders --rule \"Price is positive\" --format csv");
    return command;
}

void RulesCommand::run(const CommonOptions& options) {
    if (m_limit && !m_rule)
        throw CommandError(ExitCode::Usage, "--limit applies to the rows of a rule: name the rule with --rule");
    Session session(options.repository);
    m_runChoice.select(session);
    const std::optional<TableIdentity> table = m_table ? std::optional(session.table(*m_table)) : std::nullopt;
    const TableIdentity* const chosen = table ? &*table : nullptr;
    if (!m_rule) {
        Listing listing(options);
        listRules(session, listing, chosen);
        listing.finish();
        return;
    }
    const RuleEntry rule = findRule(session, *m_rule, chosen);
    Listing listing(options);
    listViolations(session, listing, rule, m_limit.value_or(kNoLimit));
    listing.finish();
    if (rule.loggedRows < rule.failedRows)
        say(fmt::format("the run kept the first {} of {} rows", rule.loggedRows, rule.failedRows));
}

} // namespace tavix::cli
