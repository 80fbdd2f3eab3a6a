#include "cli/CompareCommand.h"

#include "base/NullText.h"
#include "base/NumberText.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Names.h"
#include "cli/RepositoryChoice.h"
#include "cli/RunChoice.h"
#include "cli/Session.h"
#include "cli/Signals.h"
#include "report/ChangeRanking.h"
#include "report/CountText.h"
#include "report/ReportTables.h"
#include "report/RunComparison.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <span>

namespace tavix::cli {

namespace {

constexpr int kPercentPlaces = 2;
constexpr std::int64_t kMostTop = 100'000;
constexpr std::size_t kRankedLines = 20;
constexpr std::size_t kExamples = 3;
constexpr std::size_t kExamplesOfField = 10;

std::string_view wordOf(RunChange::Subject subject) {
    using Subject = RunChange::Subject;
    switch (subject) {
    case Subject::Table:
        return "table";
    case Subject::Field:
        return "field";
    case Subject::Records:
        return "records";
    case Subject::Metric:
        return "metric";
    case Subject::CustomMetric:
        return "custom metric";
    case Subject::Expression:
        return "expression";
    case Subject::Rule:
        return "rule";
    case Subject::Condition:
        return "condition";
    case Subject::Values:
        return "values";
    case Subject::Value:
        return "value";
    case Subject::Patterns:
        return "patterns";
    case Subject::Pattern:
        break;
    }
    return "pattern";
}

std::string_view wordOf(RunChange::Kind kind) {
    switch (kind) {
    case RunChange::Kind::New:
        return "new";
    case RunChange::Kind::Vanished:
        return "vanished";
    case RunChange::Kind::Changed:
        break;
    }
    return "changed";
}

/// In which runs a metric is that of the values that fit a narrower type; null for one of all values.
KvbDatavar wordOf(FigureBasis basis) {
    switch (basis) {
    case FigureBasis::Fits:
        return "both";
    case FigureBasis::FitsBefore:
        return "before";
    case FigureBasis::FitsAfter:
        return "after";
    case FigureBasis::AllValues:
        break;
    }
    return {};
}

/// Writes the changes: in JSON and CSV as one list, in text as a list for each table and field.
class ChangeList {
  public:
    explicit ChangeList(const CommonOptions& options)
        : m_isText(options.format == Format::Text), m_listing(options, m_isText ? Sections::Several : Sections::One) {
        if (!m_isText)
            begin("");
    }

    void add(const RunChange& change) {
        if (m_isText)
            beginFor(change);
        Row row;
        if (!m_isText) {
            row.emplace_back(change.table);
            row.emplace_back(change.field.empty() ? KvbDatavar() : KvbDatavar(change.field));
        }
        row.emplace_back(std::string(wordOf(change.subject)));
        row.emplace_back(std::string(wordOf(change.kind)));
        row.push_back(itemOf(change));
        const bool isExact = !m_isText || looksEqual(change.before, change.after);
        row.insert(row.end(),
                   {isExact ? exact(change.before) : change.before, isExact ? exact(change.after) : change.after,
                    differenceOf(change), percent(change.percentBefore), percent(change.percentAfter)});
        if (!m_isText) {
            row.emplace_back(change.weight);
            row.push_back(wordOf(change.basis));
        }
        m_listing.row(row);
    }

    void finish() {
        if (!m_isText || m_isOpen)
            m_listing.end();
        else
            m_listing.begin({"changes", "No difference", {}});
        m_listing.finish();
    }

  private:
    static KvbDatavar percent(const std::optional<double>& share) { return share ? KvbDatavar(*share) : KvbDatavar(); }

    /// Two numbers that the text format would round to the same digits.
    static bool looksEqual(const KvbDatavar& before, const KvbDatavar& after) {
        const auto* was = std::get_if<double>(&before.storage());
        const auto* is = std::get_if<double>(&after.storage());
        return was && is && formatReadable(*was) == formatReadable(*is);
    }
    [[nodiscard]] KvbDatavar exact(const KvbDatavar& value) const { return m_isText ? value.toText() : value; }

    [[nodiscard]] KvbDatavar itemOf(const RunChange& change) const {
        using Subject = RunChange::Subject;
        const std::string_view mark = basisMark(change.basis);
        if (m_isText && !mark.empty())
            return fmt::format("{} {}", change.item.view(), mark);
        if (!m_isText || !change.item.isNull())
            return change.item;
        if (change.subject == Subject::Value)
            return std::string(kNullValue);
        return change.subject == Subject::Values || change.subject == Subject::Patterns ? "(all)" : KvbDatavar();
    }

    void beginFor(const RunChange& change) {
        std::string title = change.field.empty() ? change.table : fmt::format("{}.{}", change.table, change.field);
        if (m_isOpen && title == m_title)
            return;
        if (m_isOpen)
            m_listing.end();
        m_title = std::move(title);
        begin(m_title);
    }

    void begin(const std::string& title) {
        Section section{"changes", title, {}};
        if (!m_isText)
            section.columns = {{"table", "Table"}, {"field", "Field"}};
        const Column::Kind number = Column::Kind::Number;
        // Numbers arrive as numbers; text that looks like one is a value of a text field.
        const Column::Kind figure = m_isText ? number : Column::Kind::Text;
        section.columns.insert(section.columns.end(), {{"what", "What"},
                                                       {"change", "Change"},
                                                       {"item", "Item"},
                                                       {"before", "Before", figure},
                                                       {"after", "After", figure},
                                                       {"difference", "Difference", figure},
                                                       {"percent_before", "% before", number, kPercentPlaces},
                                                       {"percent_after", "% after", number, kPercentPlaces}});
        if (!m_isText) {
            section.columns.push_back({"weight", "Share", number});
            section.columns.push_back({"fits", "Fits"});
        }
        m_listing.begin(section);
        m_isOpen = true;
    }

    bool m_isText;
    Listing m_listing;
    bool m_isOpen = false;
    std::string m_title;
};

/// Writes the ranked changes as text: the first ones, or those of at least so many percent, and how many are left.
class RankedList {
  public:
    RankedList(const CommonOptions& options, const ChangeRanking& ranking)
        : m_listing(options, Sections::Several), m_ranking(ranking), m_lines(ranking.ranked()) {}

    void write(std::optional<double> atLeast) {
        auto end = m_lines.begin() + static_cast<std::ptrdiff_t>(std::min(m_lines.size(), kRankedLines));
        if (atLeast)
            end = std::find_if(m_lines.begin(), m_lines.end(),
                               [&](const RankedChange& line) { return line.weight < *atLeast; });
        std::int64_t rest = m_ranking.size();
        for (auto line = m_lines.begin(); line != end; ++line)
            rest -= line->changes;
        if (m_ranking.size() == 0)
            tell("No difference");
        else if (end == m_lines.begin())
            tell(fmt::format("No change of {} % of the rows or more", formatReadable(*atLeast)));
        else
            writeLines({m_lines.begin(), end});
        if (rest > 0)
            tell(fmt::format("and {}; --all lists {}", countOf(rest, "further change"), rest == 1 ? "it" : "them"));
        m_listing.finish();
    }

  private:
    void tell(const std::string& sentence) { m_listing.begin({"changes", sentence, {}}); }

    void writeLines(std::span<const RankedChange> lines) {
        const Column::Kind number = Column::Kind::Number;
        m_listing.begin({"changes",
                         countOf(m_ranking.size(), "change") + ", those of the largest share of rows first",
                         {{"weight", "% of rows", number, kPercentPlaces},
                          {"subject", "Table or field"},
                          {"what", "What"},
                          {"before", "Before", number},
                          {"after", "After", number},
                          {"change", "Change", Column::Kind::Prose}}});
        const auto cell = [](const std::string& text) { return text.empty() ? KvbDatavar() : KvbDatavar(text); };
        for (const RankedChange& line : lines)
            m_listing.row(Row{line.weight,
                              line.field.empty() ? line.table : fmt::format("{}.{}", line.table, line.field), line.what,
                              cell(line.before), cell(line.after), cell(line.change)});
        m_listing.end();
    }

    Listing m_listing;
    const ChangeRanking& m_ranking;
    std::vector<RankedChange> m_lines;
};

/// Appends the fields with that name: FIELD of any table, or TABLE.FIELD.
void appendFields(Session& session, const std::string& wanted, const std::optional<std::string>& onlyTable,
                  std::set<std::pair<std::string, std::string>>& chosen, std::vector<std::string>& known) {
    for (const TableIdentity& table : session.tables()) {
        const std::string& name = table.displayName();
        if (onlyTable && name != *onlyTable)
            continue;
        const std::vector<FieldAddress> addresses = readFieldAddress(wanted, {&name, 1});
        for (const NamedField& field : readFieldNames(session.viewer(), table.id)) {
            const bool isAddressed = std::any_of(addresses.begin(), addresses.end(),
                                                 [&](const FieldAddress& each) { return each.field == field.name; });
            if (isAddressed || field.name == wanted)
                chosen.emplace(name, field.name);
            known.push_back(fmt::format("{}.{}", name, field.name));
        }
    }
}

} // namespace

CLI::App* CompareCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("compare", "List the differences between two runs of a job");
    addJobChoice(*command, m_job);
    command
        ->add_option("--run", m_runs,
                     "Given twice: the two runs, the earlier one first. Given once: that run and the one before it. "
                     "Default: the last two runs")
        ->type_name("N")
        ->transform(wholeNumber(1, kMostRun))
        ->allow_extra_args(false);
    command->add_option("-t,--table", m_table, "Compare only this table")->type_name("NAME");
    command->add_option("-f,--field", m_field, "Compare only this field: TABLE.FIELD, or FIELD of any table")
        ->type_name("NAME");
    command
        ->add_option("--at-least", m_atLeast,
                     "Only changes that concern at least this share of the rows, instead of the first twenty")
        ->type_name("PERCENT")
        ->transform(percentage());
    command->add_flag("--all", m_all, "In text: each difference by itself, in the order of tables and fields");
    command
        ->add_option(
            "--top", m_top,
            "The limit for new, vanished and most moved values and patterns of each field. Default: 10. 0 skips "
            "values and patterns, which is fast")
        ->type_name("N")
        ->transform(wholeNumber(0, kMostTop));
    command->footer(
        "Lists only differences: new and vanished tables and fields, numbers of records, metrics, custom\n"
        "metrics, rules, and for each field the new, vanished and most moved values and patterns with their\n"
        "rows and shares. In text, they are summed up and ordered by the share of the rows that they concern,\n"
        "and the first twenty are shown; figures that follow from the number of records are told once.\n"
        "--all, JSON and CSV have each difference by itself. The order is fixed, and no time or run number is\n"
        "written, so two results can be compared with diff.\n\n"
        "Examples:\n"
        "  tavix compare -R profile.tavix --job sales\n"
        "  tavix compare -R profile.tavix --job sales --field customers.city --at-least 0.5\n"
        "  tavix compare -R profile.tavix --job sales --run 3 --run 7 --top 20 --format csv -o changes.csv");
    return command;
}

CompareCommand::Runs CompareCommand::chooseRuns(Session& session) const {
    std::vector<int> known; // the latest first
    for (const RunInfo& run : session.runs())
        known.push_back(run.id);
    if (m_runs.size() > 2)
        throw CommandError(ExitCode::Usage, "only two runs can be compared: give --run at most twice");
    if (m_runs.size() == 2)
        return {m_runs[0], m_runs[1]};
    auto after = known.begin();
    if (!m_runs.empty()) {
        session.selectRun(m_runs.front());
        after = std::find(known.begin(), known.end(), m_runs.front());
    }
    if (after == known.end() || after + 1 == known.end())
        throw CommandError(
            ExitCode::Usage,
            m_runs.empty()
                ? fmt::format("job \"{}\" has one run only; there is nothing to compare it with", session.jobName())
                : fmt::format("run {} is the first of job \"{}\"; there is nothing to compare it with", m_runs.front(),
                              session.jobName()));
    return {*(after + 1), *after};
}

void CompareCommand::run(const CommonOptions& options) {
    // One session for each run: a session has one current run.
    const std::string repository = chosenRepository(options.repository);
    Session before(repository);
    Session after(repository);
    before.selectJob(m_job);
    after.selectJob(m_job);
    const Runs runs = chooseRuns(after);
    before.selectRun(runs.before);
    after.selectRun(runs.after);
    checkTable(before, after);
    RunComparisonOptions comparison;
    comparison.top = static_cast<std::size_t>(m_top);
    comparison.table = m_table;
    comparison.pulse = [] { stopIfInterrupted(); };
    if (m_field)
        comparison.fields = chooseFields(before, after);
    say(fmt::format("run {} of job \"{}\" compared with run {}", runs.before, after.jobName(), runs.after));
    if (options.format == Format::Text && !m_all) {
        ChangeRanking ranking(m_field ? kExamplesOfField : kExamples);
        compareRuns(before.viewer(), after.viewer(), comparison, [&](const RunChange& change) { ranking.add(change); });
        RankedList(options, ranking).write(m_atLeast);
        return;
    }
    ChangeList list(options);
    compareRuns(before.viewer(), after.viewer(), comparison, [&](const RunChange& change) {
        if (change.weight >= m_atLeast.value_or(0))
            list.add(change);
    });
    list.finish();
}

void CompareCommand::checkTable(Session& before, Session& after) const {
    if (!m_table)
        return;
    std::vector<std::string> names;
    for (Session* session : {&after, &before})
        for (const TableIdentity& table : session->tables())
            if (std::find(names.begin(), names.end(), table.displayName()) == names.end())
                names.push_back(table.displayName());
    (void)pickByName("table", *m_table, names);
}

CompareCommand::FieldNames CompareCommand::chooseFields(Session& before, Session& after) const {
    FieldNames chosen;
    std::vector<std::string> known;
    for (Session* session : {&after, &before})
        appendFields(*session, *m_field, m_table, chosen, known);
    std::sort(known.begin(), known.end());
    known.erase(std::unique(known.begin(), known.end()), known.end());
    if (chosen.empty())
        (void)pickByName("field", *m_field, known);
    return chosen;
}

} // namespace tavix::cli
