#include "cli/RuleLists.h"

#include "access/Layouts.h"
#include "base/NullText.h"
#include "cli/CommandError.h"
#include "cli/Listing.h"
#include "cli/Names.h"
#include "cli/Session.h"

#include <fmt/format.h>

#include <map>

namespace tavix::cli {

namespace {

constexpr int kAllTables = -1;

KvbDatavar shareOf(std::int64_t part, std::int64_t whole) {
    return whole > 0 ? KvbDatavar(100.0 * static_cast<double>(part) / static_cast<double>(whole)) : KvbDatavar();
}

std::map<int, std::string> tableNames(Session& session) {
    std::map<int, std::string> names;
    for (const TableIdentity& table : session.tables())
        names[table.id] = table.displayName();
    return names;
}

} // namespace

bool hasCustomMetrics(Session& session, const TableIdentity& table) {
    return session.checked(session.viewer().getCustomMetrics(table.id))->next();
}

bool hasRules(Session& session, const TableIdentity& table) {
    return session.checked(session.viewer().getBusinessRules(table.id))->next();
}

void listCustomMetrics(Session& session, Listing& listing, const TableIdentity& table) {
    listing.begin({"custom_metrics",
                   fmt::format("Custom metrics of {}", table.displayName()),
                   {{"custom_metric", "Custom metric"},
                    {"output", "Output"},
                    {"value", "Value", Column::Kind::Number, -1, true},
                    {"figure", "Figure"},
                    {"used_rows", "Used rows", Column::Kind::Number},
                    {"error_rows", "Error rows", Column::Kind::Number},
                    {"inputs", "Inputs"},
                    {"expression", "Expression", Column::Kind::Prose}}});
    const ProfileCursorHandle metrics = session.checked(session.viewer().getCustomMetrics(table.id));
    while (metrics->next())
        listing.row(Row{
            metrics->getColumnValue(layout::CustomMetricName), metrics->getColumnValue(layout::CustomMetricOutputName),
            metrics->getColumnValue(layout::CustomMetricOutputValue),
            metrics->getColumnValue(layout::CustomMetricFigure), metrics->getColumnValue(layout::CustomMetricUsedRows),
            metrics->getColumnValue(layout::CustomMetricErrorRows), metrics->getColumnValue(layout::CustomMetricInputs),
            metrics->getColumnValue(layout::CustomMetricExpression)});
    listing.end();
}

void listRules(Session& session, Listing& listing, const TableIdentity* table) {
    listing.begin({"rules",
                   table ? fmt::format("Rules of {}", table->displayName()) : std::string("Rules"),
                   {{"table", "Table"},
                    {"rule", "Rule"},
                    {"failed_rows", "Failed rows", Column::Kind::Number},
                    {"percent_of_rows", "% of rows", Column::Kind::Number, 2},
                    {"checked_rows", "Checked rows", Column::Kind::Number},
                    {"error_rows", "Error rows", Column::Kind::Number},
                    {"inputs", "Inputs"},
                    {"condition", "Condition", Column::Kind::Prose}}});
    const std::map<int, std::string> names = tableNames(session);
    const ProfileCursorHandle rules =
        session.checked(session.viewer().getBusinessRules(table ? table->id : kAllTables));
    while (rules->next()) {
        const std::int64_t failed = rules->getColumnInt64(layout::RuleFailedRows);
        const std::int64_t checked = rules->getColumnInt64(layout::RuleCheckedRows);
        listing.row(Row{names.at(rules->getColumnInt(layout::RuleTableId)), rules->getColumnValue(layout::RuleName),
                        failed, shareOf(failed, checked), checked, rules->getColumnInt64(layout::RuleErrorRows),
                        rules->getColumnValue(layout::RuleInputs), rules->getColumnValue(layout::RuleCondition)});
    }
    listing.end();
}

RuleEntry findRule(Session& session, const std::string& name, const TableIdentity* table) {
    const std::map<int, std::string> names = tableNames(session);
    const ProfileCursorHandle rules =
        session.checked(session.viewer().getBusinessRules(table ? table->id : kAllTables));
    std::vector<RuleEntry> found;
    std::vector<std::string> ruleNames;
    while (rules->next()) {
        RuleEntry rule;
        rule.id = rules->getColumnInt(layout::RuleId);
        rule.name = rules->getColumnValue(layout::RuleName).str();
        rule.table = names.at(rules->getColumnInt(layout::RuleTableId));
        rule.failedRows = rules->getColumnInt64(layout::RuleFailedRows);
        rule.loggedRows = rules->getColumnInt64(layout::RuleLoggedRows);
        ruleNames.push_back(rule.name);
        found.push_back(std::move(rule));
    }
    std::vector<std::string> tables;
    for (const RuleEntry& rule : found)
        if (rule.name == name)
            tables.push_back(rule.table);
    if (tables.size() > 1)
        throw CommandError(
            ExitCode::Usage,
            fmt::format("several tables have a rule \"{}\": name one of {} with --table", name, listNames(tables)));
    return found[pickByName("rule", name, ruleNames)];
}

void listViolations(Session& session, Listing& listing, const RuleEntry& rule, std::int64_t limit) {
    const ProfileCursorHandle rows = session.checked(session.viewer().getBusinessRuleRowLog(rule.id, 0, true));
    Section section{"rows",
                    fmt::format("Rows of {} that violate \"{}\"", rule.table, rule.name),
                    {{"row_number", "Row", Column::Kind::Number}},
                    false,
                    std::string(kNullValue)};
    for (int column = layout::RuleRowFirstField; column < rows->getColumnCount(); ++column) {
        const std::string name = rows->getColumnName(column).str();
        section.columns.push_back({name, name});
    }
    listing.begin(section);
    Row row(section.columns.size());
    for (std::int64_t shown = 0; shown < limit && rows->next(); ++shown) {
        row[0] = rows->getColumnValue(layout::RuleRowNumber);
        for (std::size_t at = 1; at < row.size(); ++at)
            row[at] = rows->getColumnValue(layout::RuleRowFirstField + static_cast<int>(at) - 1);
        listing.row(row);
    }
    listing.end();
}

} // namespace tavix::cli
