#include "cli/ShowCommand.h"

#include "access/Layouts.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/FilterArgument.h"
#include "cli/RuleLists.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"
#include "cli/TablesCommand.h"
#include "filter/ExpressionCheck.h"

#include <CLI/App.hpp>

#include <algorithm>
#include <functional>

namespace tavix::cli {

namespace {

/// The number of values and patterns in the overview of a field.
constexpr std::int64_t kOverviewRows = 20;

} // namespace

CLI::App* ShowCommand::declare(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("show", "Show a run, the metrics of a table, or everything about a field");
    command
        ->add_option(
            "SUBJECT", m_subject,
            "A table, as with --table, or TABLE.FIELD, as with --field. A name that could mean both is an error")
        ->type_name("");
    command
        ->add_option("-t,--table", m_table, "The table: shows the metrics of its fields, its custom metrics and rules")
        ->type_name("NAME");
    command
        ->add_option(
            "-f,--field", m_field,
            "The field, as TABLE.FIELD, or as FIELD with --table. Names may contain dots and may be put in double "
            "quotes")
        ->type_name("T.F");
    constexpr const char* kLists = "Lists (any number; a field without one shows them all)";
    command->add_flag("--metrics", m_metrics, "The 24 standard metrics")->group(kLists);
    command->add_flag("--types", m_types, "Which types the values fit, and in which forms they are written")
        ->group(kLists);
    command->add_flag("--values", m_values, "The value distribution, most frequent first")->group(kLists);
    command->add_flag("--patterns", m_patterns, "The pattern distribution, most frequent first")->group(kLists);
    command->add_flag("--percentiles", m_percentiles, "The percentiles")->group(kLists);
    command->add_flag("--outliers", m_outliers, "The lowest and the highest values")->group(kLists);
    command->add_flag("--custom-metrics", m_customMetrics, "The custom metrics of a table")->group(kLists);
    command->add_flag("--rules", m_rules, "The business rules of a table")->group(kLists);
    command->add_flag("--log", m_log, "The execution log of the run")->group(kLists);
    command
        ->add_option("--filter", m_filter,
                     "Show only the values or patterns that meet this condition: a \".flt\" file, a text file, or an "
                     "expression with the fields `Value` and `Count`. Implies --values if no list is given")
        ->type_name("FILE|TEXT");
    command->add_option("-n,--limit", m_limit, "The largest number of rows in each list")
        ->type_name("N")
        ->transform(wholeNumber());
    m_runChoice.declare(*command);
    command->footer(
        "Without a list, a table shows in text the metrics of its fields, its custom metrics and its rules;\n"
        "in json and csv only the metrics. A field shows its metrics, types, the first 20 values and\n"
        "patterns, percentiles and outliers. A list given by name is shown in full, unless --limit is given.\n\n"
        "Examples:\n"
        "  tavix show -R profile.tavix\n"
        "  tavix show -R profile.tavix airports\n"
        "  tavix show -R profile.tavix --table airports --rules --format json\n"
        "  tavix show -R profile.tavix airports.state\n"
        "  tavix show -R profile.tavix --field airports.state --values --format csv -o states.csv\n"
        "  tavix show -R profile.tavix --field airports.state --filter 'length(`Value`) != 2'\n"
        "  tavix show -R profile.tavix --job sales --run 3 --log");
    return command;
}

void ShowCommand::run(const CommonOptions& options) {
    if (!m_subject)
        checkChoice(options);
    Session session(options.repository);
    m_runChoice.select(session);
    if (m_subject) {
        session.addressSubject(*m_subject, m_table, m_field);
        checkChoice(options);
    }
    if (m_field)
        showField(session, options);
    else if (m_table)
        showTable(session, options);
    else
        showRun(session, options);
}

void ShowCommand::checkChoice(const CommonOptions& options) const {
    const int fieldLists = m_types + m_values + m_patterns + m_percentiles + m_outliers;
    if (fieldLists > 0 && !m_field)
        throw CommandError(ExitCode::Usage,
                           "types, values, patterns, percentiles and outliers belong to a field: name it with --field");
    if (m_filter && !m_field)
        throw CommandError(ExitCode::Usage, "a filter belongs to the values of a field: name it with --field");
    if (m_filter && (m_metrics || m_types || m_percentiles || m_outliers))
        throw CommandError(ExitCode::Usage, "a filter applies to --values and --patterns alone: metrics, types, "
                                            "percentiles and outliers are those of all rows");
    if (m_metrics && !m_field && !m_table)
        throw CommandError(ExitCode::Usage, "metrics of what? Name a table with --table or a field with --field");
    if ((m_customMetrics || m_rules) && (m_field || !m_table))
        throw CommandError(ExitCode::Usage, "custom metrics and rules belong to a table: name it with --table");
    if (options.format == Format::Csv && m_table && !m_field && m_metrics + m_customMetrics + m_rules > 1)
        throw CommandError(ExitCode::Usage,
                           "a CSV file holds one list: choose one of --metrics, --custom-metrics and --rules");
    if (m_log && (m_field || m_table))
        throw CommandError(ExitCode::Usage, "the log belongs to the run: leave --table and --field out");
    if (options.format == Format::Csv && m_field && fieldLists + m_metrics != 1 && !(m_filter && fieldLists == 0))
        throw CommandError(ExitCode::Usage, "a CSV file holds one list: choose one of --metrics, --types, --values, "
                                            "--patterns, --percentiles and --outliers");
    if (options.format == Format::Csv && !m_field && !m_table && !m_log)
        throw CommandError(ExitCode::Usage,
                           "a CSV file holds one list: add --table, --field or --log, or use \"tavix tables\"");
}

std::int64_t ShowCommand::limitOr(std::int64_t limit) const {
    return m_limit.value_or(limit);
}

void ShowCommand::showRun(Session& session, const CommonOptions& options) const {
    if (m_log) {
        Listing listing(options);
        listLog(session, listing, limitOr(kNoLimit));
        listing.finish();
        return;
    }
    const int runId = session.viewer().getCurrentJob();
    Listing listing(options, Sections::Several);
    listing.begin(
        {"run",
         "Run",
         {{"job", "Job"}, {"run", "Run", Column::Kind::Number}, {"date", "Date"}, {"description", "Description"}},
         true});
    if (runId >= 0) {
        double date = 0;
        KvbString description;
        session.check(session.viewer().getJobInfo(runId, date, description));
        listing.row(Row{session.jobName(), runId, shownDate(date), KvbString(description.view())});
    }
    listing.end();
    listTables(session, listing);
    listLog(session, listing, limitOr(kOverviewRows));
    listing.finish();
}

void ShowCommand::showTable(Session& session, const CommonOptions& options) const {
    const TableIdentity table = session.table(*m_table);
    saySample(table);
    const int wanted = m_metrics + m_customMetrics + m_rules;
    // JSON and CSV have the same list for every table.
    const bool isOverview = wanted == 0 && options.format == Format::Text;
    const bool withMetrics = m_metrics || wanted == 0;
    const bool withCustom = m_customMetrics || (isOverview && hasCustomMetrics(session, table));
    const bool withRules = m_rules || (isOverview && hasRules(session, table));
    Listing listing(options, withMetrics + withCustom + withRules > 1 ? Sections::Several : Sections::One);
    if (withMetrics)
        listMetrics(session, listing, table, MetricChoice::All);
    if (withCustom)
        listCustomMetrics(session, listing, table);
    if (withRules)
        listRules(session, listing, &table);
    listing.finish();
}

void ShowCommand::showField(Session& session, const CommonOptions& options) const {
    struct Choice {
        bool wanted;
        std::int64_t overview;
        std::function<void(Listing&, const ChosenField&, std::int64_t limit)> list;
    };
    const std::string filter = m_filter ? filterTextOf(*m_filter) : std::string();
    const bool onlyValues = m_filter && !m_patterns;
    const bool all = !m_filter && !m_metrics && !m_types && !m_values && !m_patterns && !m_percentiles && !m_outliers;
    const std::vector<Choice> choices{
        {m_metrics, kNoLimit,
         [&](Listing& listing, const ChosenField& field, std::int64_t) { listMetrics(session, listing, field); }},
        {m_types, kNoLimit,
         [&](Listing& listing, const ChosenField& field, std::int64_t limit) {
             listTypes(session, listing, field, limit);
         }},
        {m_values || onlyValues, kOverviewRows,
         [&](Listing& listing, const ChosenField& field, std::int64_t limit) {
             listValues(session, listing, field, {limit, filter});
         }},
        {m_patterns, kOverviewRows,
         [&](Listing& listing, const ChosenField& field, std::int64_t limit) {
             listPatterns(session, listing, field, {limit, filter});
         }},
        {m_percentiles, kNoLimit,
         [&](Listing& listing, const ChosenField& field, std::int64_t limit) {
             listPercentiles(session, listing, field, limit);
         }},
        {m_outliers, kNoLimit,
         [&](Listing& listing, const ChosenField& field, std::int64_t limit) {
             listOutliers(session, listing, field, limit);
         }},
    };
    const auto wanted = std::count_if(choices.begin(), choices.end(), [](const Choice& c) { return c.wanted; });
    // A filtered list in text has a title, which says that it is not complete; types are a sentence and a list.
    const bool isTitled =
        (options.format == Format::Text && !filter.empty()) || (options.format != Format::Csv && m_types);

    const ChosenField field = session.field(*m_field, m_table);
    saySample(field.table);
    if (const auto remark = CheckFilterText(filter).remark)
        say("the filter: " + expression::describe(*remark));
    Listing listing(options, wanted == 1 && !isTitled ? Sections::One : Sections::Several);
    for (const Choice& choice : choices)
        if (all || choice.wanted)
            choice.list(listing, field, limitOr(all ? choice.overview : kNoLimit));
    listing.finish();
}

} // namespace tavix::cli
