#include "cli/FindingsCommand.h"

#include "base/LoginName.h"
#include "base/NoteText.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Session.h"
#include "cli/ShownDate.h"
#include "findings/Catalogue.h"
#include "report/FindingReport.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

using findings::Likelihood;

KvbDatavar textOrNull(std::string_view text) {
    return text.empty() ? KvbDatavar() : KvbDatavar(std::string(text));
}

KvbDatavar countOrNull(std::int64_t count) {
    return count == 0 ? KvbDatavar() : KvbDatavar(count);
}

Row rowOf(const FindingEntry& entry, bool isText, bool isDismissed) {
    const FindingRecord& record = entry.record;
    Row row{std::string(record.likelihoodText()),
            record.table,
            textOrNull(record.field),
            record.code,
            countOrNull(record.values),
            countOrNull(record.rows)};
    if (isDismissed && record.dismissal)
        row.insert(row.end(), {record.dismissal->reason, record.dismissal->user, shownDate(record.dismissal->date)});
    if (isText) {
        row.emplace_back(entry.sentence);
        return row;
    }
    for (const std::string_view text :
         {std::string_view(record.detail), std::string_view(record.condition), std::string_view(entry.sentence),
          record.meaning(), record.advice(), std::string_view(entry.rule), std::string_view(entry.watch)})
        row.push_back(textOrNull(text));
    return row;
}

std::optional<Likelihood> parseLikelihood(const std::string& word) {
    for (const Likelihood likelihood : {Likelihood::Possible, Likelihood::Likely, Likelihood::Definite})
        if (word == findings::likelihoodWord(likelihood))
            return likelihood;
    return std::nullopt;
}

void failOnFindings(const std::vector<FindingEntry>& open, Likelihood least) {
    const auto count =
        std::count_if(open.begin(), open.end(), [least](const FindingEntry& entry) { return entry.isAtLeast(least); });
    if (count > 0)
        throw CommandError(ExitCode::Alert, fmt::format("{} {} {}{}", count, count == 1 ? "finding is" : "findings are",
                                                        findings::likelihoodWord(least),
                                                        least == Likelihood::Definite ? "" : " or more certain"));
}

} // namespace

CLI::App* FindingsCommand::declare(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("findings", "List what the profiles of a run give away, or dismiss a finding");
    command->add_option("SUBJECT", m_subject, "Only those of a table, or of a field as TABLE.FIELD")->type_name("");
    command->add_option("-t,--table", m_table, "Only those of this table")->type_name("NAME");
    command->add_option("-f,--field", m_field, "Only those of this field, as TABLE.FIELD, or as FIELD with --table")
        ->type_name("T.F");
    command
        ->add_option(
            "--fail-at", m_failAt,
            "possible, likely or definite: exit with code 1 if a finding is of this likelihood or a higher one")
        ->type_name("LIKELIHOOD")
        ->transform(oneOf({"possible", "likely", "definite"}));
    command->add_flag("--dismissed", m_dismissed, "List the dismissed findings, with reason, user and date");
    constexpr const char* kChange = "Dismissing, for one table or field";
    command->add_option("--dismiss", m_dismiss, "Dismiss the finding with this code, in all runs")
        ->type_name("CODE")
        ->group(kChange);
    command->add_option("--reason", m_reason, "Why it is as it should be")->type_name("TEXT")->group(kChange);
    command->add_option("--restore", m_restore, "Do not dismiss the finding with this code any more")
        ->type_name("CODE")
        ->group(kChange);
    m_runChoice.declare(*command);
    command->footer(
        "A finding has a likelihood (definite, likely, possible) and the number of values and rows that it\n"
        "concerns. JSON and CSV also have what it may mean, what to do, the condition over `Value` that is\n"
        "true for exactly its values, and the rule that watches it. A dismissed finding is not listed and\n"
        "does not count for --fail-at.\n\n"
        "Examples:\n"
        "  tavix findings -R profile.tavix\n"
        "  tavix findings -R profile.tavix sales.city --format json\n"
        "  tavix findings -R profile.tavix --fail-at likely\n"
        "  tavix findings -R profile.tavix sales.plz --dismiss zero-padded-numbers --reason \"Postal codes\"");
    return command;
}

void FindingsCommand::checkArguments() const {
    if (m_dismiss && m_restore)
        throw CommandError(ExitCode::Usage, "--dismiss and --restore exclude each other");
    if (m_dismiss.has_value() != m_reason.has_value())
        throw CommandError(ExitCode::Usage, "--dismiss goes with --reason");
    if ((m_dismiss || m_restore) && !m_subject && !m_table && !m_field)
        throw CommandError(ExitCode::Usage, "a finding of what? Name its field as TABLE.FIELD, or its table");
    if (m_reason)
        if (const Status checked = checkNote(tidyNote(*m_reason)); !checked)
            throw CommandError(ExitCode::Usage, checked.error().text);
    if (const auto& code = m_dismiss ? m_dismiss : m_restore; code && !findings::findEntry(*code))
        throw CommandError(ExitCode::Usage,
                           fmt::format("there is no kind of finding \"{}\"; docs/findings.md has them", *code));
}

FindingReport FindingsCommand::read(Session& session) const {
    PrViewer& viewer = session.viewer();
    if (m_field)
        return reportFindings(viewer, readFieldFindings(viewer, session.field(*m_field, m_table).id));
    if (m_table)
        return reportFindings(viewer, readTableFindings(viewer, session.table(*m_table).id));
    return reportFindings(viewer, readFindings(viewer));
}

void FindingsCommand::dismiss(Session& session, const FindingReport& list) const {
    const std::vector<FindingEntry>& candidates = m_dismiss ? list.open : list.dismissed;
    const std::string& code = m_dismiss ? *m_dismiss : *m_restore;
    // A table may have the finding in several fields; one is dismissed at a time.
    const auto isMeant = [&](const FindingEntry& entry) {
        return entry.record.code == code && (m_field || entry.record.fieldId == -1);
    };
    const auto entry = std::find_if(candidates.begin(), candidates.end(), isMeant);
    if (entry == candidates.end())
        throw CommandError(ExitCode::Usage, fmt::format("the {} has no {}finding \"{}\"", m_field ? "field" : "table",
                                                        m_restore ? "dismissed " : "", code));
    const int table = entry->record.tableId;
    const int field = m_field ? entry->record.fieldId : 0;
    PrViewer& viewer = session.viewer();
    session.check(m_dismiss ? viewer.dismissFinding(table, field, code, loginName(), *m_reason)
                            : viewer.restoreFinding(table, field, code));
}

void FindingsCommand::list(const CommonOptions& options, const FindingReport& list) const {
    const bool isText = options.format == Format::Text;
    Section section{"findings",
                    "Findings",
                    {{"likelihood", "Likelihood"},
                     {"table", "Table"},
                     {"field", "Field"},
                     {"code", "Code"},
                     {"values", "Values", Column::Kind::Number},
                     {"rows", "Rows", Column::Kind::Number}}};
    if (m_dismissed) {
        section.columns.push_back({"reason", "Reason"});
        section.columns.push_back({"dismissed_by", "By"});
        section.columns.push_back({"dismissed", "Dismissed"});
    }
    if (isText)
        section.columns.push_back({"sentence", "Finding", Column::Kind::Prose});
    else
        for (const char* key : {"detail", "condition", "sentence", "meaning", "advice", "rule", "watch"})
            section.columns.push_back({key, key});
    Listing listing(options);
    listing.begin(section);
    for (const FindingEntry& entry : m_dismissed ? list.dismissed : list.open)
        listing.row(rowOf(entry, isText, m_dismissed));
    listing.end();
    listing.finish();
}

void FindingsCommand::run(const CommonOptions& options) {
    checkArguments();
    Session session(options.repository);
    m_runChoice.select(session);
    if (m_subject)
        session.addressSubject(*m_subject, m_table, m_field);
    FindingReport found = read(session);
    if (!found.isExamined) {
        // No list at all: an empty one would look like praise.
        throw CommandError(ExitCode::Source, "not examined: the run was made by a version that looked for no findings");
    }
    if (m_dismiss || m_restore) {
        dismiss(session, found);
        found = read(session);
    }
    list(options, found);
    if (options.format == Format::Text && !m_dismissed && !found.dismissed.empty())
        say(fmt::format("{} dismissed (--dismissed lists them)", found.dismissed.size()));
    if (const auto least = parseLikelihood(m_failAt))
        failOnFindings(found.open, *least);
}

} // namespace tavix::cli
