#include "cli/SuggestCommand.h"

#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "cli/Signals.h"
#include "report/CountText.h"
#include "report/JobFileText.h"
#include "report/RuleSuggestions.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <filesystem>

namespace tavix::cli {

namespace {

constexpr std::int64_t kMostDomain = 10'000;

std::vector<std::string> kindWords() {
    std::vector<std::string> words;
    words.reserve(kSuggestionKinds.size());
    for (const SuggestionKindInfo& info : kSuggestionKinds)
        words.emplace_back(info.word);
    return words;
}

void listSuggestions(const CommonOptions& options, const std::vector<RuleSuggestion>& suggestions) {
    Listing listing(options);
    listing.begin({"suggestions",
                   "Suggested rules",
                   {{"table", "Table"},
                    {"field", "Field"},
                    {"kind", "Kind"},
                    {"violations", "Violations", Column::Kind::Number},
                    {"violation_unit", "Of"},
                    {"confidence", "Confidence"},
                    {"name", "Name"},
                    {"element", "Written as"},
                    {"reason", "Reason"},
                    {"remark", "Remark"},
                    {"violating_values", "Filter of the violating values"},
                    {"rule", "Rule", Column::Kind::Prose}}});
    for (const RuleSuggestion& one : suggestions)
        listing.row(Row{one.table, one.field, std::string(suggestionWord(one.kind)), one.violations,
                        std::string(one.violationNoun), std::string(confidenceWord(one.confidence)), one.name,
                        std::string(elementWord(one.element)), one.reason,
                        one.remark.empty() ? KvbDatavar() : KvbDatavar(one.remark),
                        one.violatingValues.empty() ? KvbDatavar() : KvbDatavar(one.violatingValues),
                        one.ruleText().empty() ? KvbDatavar() : KvbDatavar(one.ruleText())});
    listing.end();
    listing.finish();
}

/// The list for people: the columns that programs need would hide the others.
void listForPeople(const CommonOptions& options, const std::vector<RuleSuggestion>& suggestions) {
    Listing listing(options);
    listing.begin({"suggestions",
                   "Suggested rules",
                   {{"field", "Table or field"},
                    {"kind", "Kind"},
                    {"confidence", "Confidence"},
                    {"violations", "Violations"},
                    {"reason", "Reason and rule", Column::Kind::Prose}}});
    for (const RuleSuggestion& one : suggestions) {
        const std::string rule = one.ruleText();
        listing.row(Row{one.table + "." + one.field, std::string(suggestionWord(one.kind)),
                        std::string(confidenceWord(one.confidence)), one.violationText(),
                        one.reason + (rule.empty() ? "" : ": " + rule)});
    }
    listing.end();
    listing.finish();
}

} // namespace

CLI::App* SuggestCommand::declare(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("suggest", "Suggest rules for a job from the figures of a run, as a job file");
    command
        ->add_option("SUBJECT", m_subject,
                     "A table, as with --table, or TABLE.FIELD, as with --field. Default: all tables of the run")
        ->type_name("");
    command->add_option("-t,--table", m_table, "Only for this table")->type_name("NAME");
    command->add_option("-f,--field", m_field, "Only for this field, TABLE.FIELD, or FIELD with --table")
        ->type_name("T.F");
    command
        ->add_option("--only", m_only,
                     "Only these kinds, separated by commas: not null, unique, constant, domain, pattern, range, "
                     "length, no cut-off, reference, coverage, no lower minimum")
        ->type_name("KINDS")
        ->delimiter(',')
        ->transform(oneOf(kindWords()));
    const SuggestionOptions defaults;
    m_longestDomain = static_cast<std::int64_t>(defaults.longestDomain);
    m_leastPatternPercent = defaults.leastPatternPercent;
    command->add_option("--domain", m_longestDomain, "The largest number of values in a domain. Default: 50")
        ->type_name("N")
        ->transform(wholeNumber(1, kMostDomain));
    command
        ->add_option("--pattern", m_leastPatternPercent,
                     "The share of the values that a pattern must have, in percent. Default: 99")
        ->type_name("P")
        ->transform(percentage());
    command->add_flag("--list", m_isList, "In text: list the suggestions instead of writing a job file");
    command->add_flag("--force", m_force, "Replace an existing job file (-o)");
    m_runChoice.declare(*command);
    command->footer("Prints a job file with the tables of the run as the run read them, the rules, custom metrics and\n"
                    "alerts that the job has, and those that the figures of the run and the runs before it suggest.\n"
                    "A comment gives the reason for each suggestion and the rows that violate it in the run. The\n"
                    "repository is not changed. With --list, or in json and csv, lists the suggestions.\n\n"
                    "Examples:\n"
                    "  tavix suggest -R profile.tavix -o rules.yaml\n"
                    "  tavix suggest -R profile.tavix airports --list\n"
                    "  tavix suggest -R profile.tavix airports.state --domain 200 --only domain,pattern\n"
                    "  tavix suggest -R profile.tavix --format json");
    return command;
}

SuggestionOptions SuggestCommand::choice(Session& session) {
    SuggestionOptions choice;
    if (m_subject)
        session.addressSubject(*m_subject, m_table, m_field);
    if (m_field) {
        const ChosenField field = session.field(*m_field, m_table);
        choice.fieldId = field.id;
        choice.tableId = field.table.id;
    } else if (m_table) {
        choice.tableId = session.table(*m_table).id;
    }
    choice.longestDomain = static_cast<std::size_t>(m_longestDomain);
    choice.leastPatternPercent = m_leastPatternPercent;
    for (const std::string& word : m_only)
        for (const SuggestionKindInfo& info : kSuggestionKinds)
            if (word == info.word)
                choice.kinds.push_back(info.kind);
    choice.pulse = [] { stopIfInterrupted(); };
    return choice;
}

void SuggestCommand::run(const CommonOptions& options) {
    const bool isJobFile = options.format == Format::Text && !m_isList;
    if (m_force && (!isJobFile || options.outputPath.empty()))
        throw CommandError(ExitCode::Usage, "--force replaces an existing job file: name it with -o");
    Session session(options.repository);
    m_runChoice.select(session);
    const SuggestionOptions wanted = choice(session);
    const std::vector<RuleSuggestion> suggestions = suggestRules(session.viewer(), session.jobId(), wanted);
    if (isJobFile)
        writeJobFile(session, options, suggestions, wanted.tableId);
    else if (options.format == Format::Text)
        listForPeople(options, suggestions);
    else
        listSuggestions(options, suggestions);
}

void SuggestCommand::writeJobFile(Session& session, const CommonOptions& options,
                                  const std::vector<RuleSuggestion>& suggestions, int tableId) const {
    std::error_code ignored;
    if (!m_force && std::filesystem::is_regular_file(options.outputPath, ignored))
        throw CommandError(ExitCode::Usage,
                           fmt::format("\"{}\" exists; add --force to replace it", options.outputPath));
    const auto text = jobFileText(session.viewer(), session.jobId(), suggestions, tableId);
    if (!text)
        throw CommandError(ExitCode::Source, text.error().text);
    Output output(options.outputPath);
    output.write(*text);
    output.commit();
    if (!options.outputPath.empty())
        say(fmt::format("{} suggested", countOf(static_cast<std::int64_t>(suggestions.size()), "rule")));
}

} // namespace tavix::cli
