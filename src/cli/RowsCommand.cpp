#include "cli/RowsCommand.h"

#include "access/Layouts.h"
#include "access/SourceChange.h"
#include "base/GenException.h"
#include "base/NullText.h"
#include "base/NumberText.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/NearestValue.h"
#include "cli/ReadingLine.h"
#include "cli/Session.h"
#include "cli/Signals.h"
#include "cli/SourceCredentials.h"
#include "report/FieldBreakdown.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <vector>

namespace tavix::cli {

namespace {

/// The same default as in the drill-through window.
constexpr std::int64_t kUsualLimit = 1000;

/// The pattern of the field whose short form is `text`; `text` itself when there is none.
std::string fullPattern(Session& session, const ChosenField& field, const std::string& text) {
    if (text.find('{') == std::string::npos)
        return text;
    const std::int64_t known = session.viewer().getDrillDownCount(field.id, text, true);
    session.check(known >= 0 || known == PrViewer::kSampleOnly);
    if (known > 0)
        return text;
    const ProfileCursorHandle patterns = session.checked(session.viewer().getPatternDist(field.id, KvbString("")));
    while (patterns->next()) {
        const KvbString pattern = patterns->getColumnValue(layout::PatternText);
        if (session.viewer().getAbbreviatedPattern(pattern) == KvbString(text))
            return pattern.str();
    }
    return text;
}

Section sectionOf(const PrViewerDrillCursor& rows) {
    Section section{"rows", "Rows", {}, false, std::string(kNullValue)};
    for (int column = 0; column < rows.getColumnCount(); ++column) {
        const std::string name = rows.getColumnName(column).str();
        const bool isText = rows.getColumnType(column) == kvbType::Text;
        section.columns.push_back({name, name, isText ? Column::Kind::Text : Column::Kind::Number});
    }
    return section;
}

/// Handles --source OLD=NEW. A path may contain an equals sign, so each one is tried as the separator until OLD is a
/// file of a run.
void locate(Session& session, const std::string& move) {
    std::string problem;
    for (auto at = move.find('='); at != std::string::npos; at = move.find('=', at + 1)) {
        KvbString remark;
        if (session.viewer().relocateFile(move.substr(0, at), move.substr(at + 1), remark)) {
            if (!remark.isEmpty())
                say(remark.view());
            return;
        }
        if (problem.empty())
            problem = session.viewer().getErrorString().str();
    }
    if (problem.empty())
        problem = fmt::format("--source {}: write OLD=NEW", move);
    throw CommandError(ExitCode::Usage, problem);
}

/// The reason why there are no rows, with a hint for a file that was moved.
CommandError drillFailure(Session& session) {
    std::string text = session.viewer().getErrorString().str();
    if (const auto missing = session.viewer().getMissingFile()) {
        if (missing->suggestion.empty())
            text += fmt::format("; if it was moved, add --source \"{}=NEW\"", missing->path);
        else
            text += fmt::format(
                "; a file of the same name and size is in the folder of the repository: add --source \"{}={}\" to "
                "read that one",
                missing->path, missing->suggestion);
    }
    return {ExitCode::Source, text};
}

/// Reports a number of rows that differs from the run's, or that there are more than were shown. Whether it did.
bool reportCount(const PrViewerDrillCursor& rows, std::int64_t inRun, std::int64_t shown) {
    std::string text;
    if (rows.isComplete())
        text = sourceChangeText(inRun, shown);
    else if (inRun > shown)
        text = fmt::format("the first {} rows of {} in the run; --limit N shows more", formatGrouped(shown),
                           formatGrouped(inRun));
    if (!text.empty())
        say(text);
    return !text.empty();
}

/// The message for a value that the run does not have, with the most similar one.
std::string unknownText(Session& session, const ChosenField& field, const std::string& text, bool isPattern) {
    const std::string name = field.table.displayName() + "." + field.name;
    if (text.empty())
        return fmt::format("the run has no empty text in {}", name);
    std::string said = fmt::format("the run has no {} \"{}\" in {}", isPattern ? "pattern" : "value", text, name);
    if (const std::string nearest = nearestValue(session, field, text, isPattern); !nearest.empty())
        said += fmt::format("; the nearest is \"{}\"", nearest);
    return said;
}

} // namespace

CLI::App* RowsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("rows", "Show the source rows that have a value, a pattern or a misfit");
    command->add_option("field", m_field, "The field, as TABLE.FIELD, or as FIELD with --table")
        ->required()
        ->type_name("T.F");
    command->add_option("-t,--table", m_table, "The field's table")->type_name("NAME");
    command->add_option("--value", m_value, "The rows with exactly this value; \"\" finds empty texts")
        ->type_name("TEXT");
    command->add_flag("--null", m_null, "The rows without a value");
    command
        ->add_option("--pattern", m_pattern,
                     "The rows whose value has this pattern, given in full or in its short form")
        ->type_name("PATTERN");
    command->add_flag("--misfit", m_misfit, "The rows whose value does not fit the field's type; see show");
    command->add_option("-n,--limit", m_limit, "The largest number of rows to show. Default: 1000")
        ->type_name("N")
        ->default_val(kUsualLimit)
        ->default_str("")
        ->transform(wholeNumber());
    command->add_option("--source", m_moves, "A source file was moved: OLD=NEW, its path in the run and its path now")
        ->type_name("OLD=NEW")
        ->allow_extra_args(false);
    m_runChoice.declare(*command);
    command->footer(
        "The rows are read from the source as it is now. Standard error reports a source that has changed\n"
        "since the run, or that has a different number of such rows. The repository remembers the path from\n"
        "--source if the file has the same size as in the run.\n\n"
        "Examples:\n"
        "  tavix rows -R profile.tavix airports.state --value TX\n"
        "  tavix rows -R profile.tavix airports.city --null --limit 20\n"
        "  tavix rows -R profile.tavix airports.zip --pattern '9{5}' --format csv -o rows.csv\n"
        "  tavix rows -R profile.tavix airports.latitude --misfit\n"
        "  tavix rows -R profile.tavix airports.city --null --source /old/airports.csv=data");
    return command;
}

KvbString RowsCommand::wanted(Session& session, const ChosenField& field) const {
    if (m_null)
        return {};
    if (m_pattern)
        return fullPattern(session, field, *m_pattern);
    return *m_value;
}

void RowsCommand::writeRows(const CommonOptions& options, PrViewerDrillCursor& rows, std::int64_t& shown) const {
    Listing listing(options);
    listing.begin(sectionOf(rows));
    std::vector<KvbDatavar> cells;
    try {
        for (; shown < m_limit && rows.next(); ++shown) {
            cells.clear();
            for (int column = 0; column < rows.getColumnCount(); ++column)
                cells.emplace_back(rows.getColumnValue(column));
            listing.row(cells);
        }
    } catch (const GenException&) {
        stopIfInterrupted(); // a database engine may report an interruption as an error of its own
        throw;
    }
    stopIfInterrupted();
    listing.end();
    listing.finish();
    if (!rows.getWarning().isNull())
        say(rows.getWarning().view());
}

void RowsCommand::showMisfits(const CommonOptions& options, Session& session, const ChosenField& field) const {
    const std::string name = field.table.displayName() + "." + field.name;
    const auto breakdown = readFieldBreakdown(session.viewer(), field.id);
    if (!breakdown)
        throw CommandError(ExitCode::Source, breakdown.error().text);
    if (!breakdown->isExamined)
        throw CommandError(ExitCode::Usage, fmt::format("the run did not examine which types the values of {} fit; an "
                                                        "earlier version of Tavix made it",
                                                        name));
    if (breakdown->reading.empty())
        throw CommandError(ExitCode::Usage,
                           fmt::format("{} is a field of texts: there is no type that its values could "
                                       "fail to fit",
                                       name));
    ReadingLine line;
    const PrViewerDrillCursorHandle rows =
        session.viewer().drillDownWhere(field.id, misfitCondition(breakdown->reading), &line);
    if (!rows) {
        stopIfInterrupted();
        throw drillFailure(session);
    }
    std::int64_t shown = 0;
    writeRows(options, *rows, shown);
    // Of a sample the run does not know all rows.
    const std::int64_t inRun = field.table.isSample ? PrViewer::kSampleOnly : breakdown->misfitRows();
    reportCount(*rows, inRun, shown);
    if (inRun == 0 && shown == 0)
        say(fmt::format("all values of {} fit the type {}", name, breakdown->reading));
}

void RowsCommand::run(const CommonOptions& options) {
    if ((m_value ? 1 : 0) + (m_pattern ? 1 : 0) + (m_null ? 1 : 0) + (m_misfit ? 1 : 0) != 1)
        throw CommandError(ExitCode::Usage, "which rows? Give one of --value, --null, --pattern and --misfit");
    Session session(options.repository);
    m_runChoice.select(session);
    for (const std::string& move : m_moves)
        locate(session, move);
    const ChosenField field = session.field(m_field, m_table);
    session.viewer().setSourceCredentials(sourceCredentials());
    if (m_misfit)
        return showMisfits(options, session, field);
    const KvbString value = wanted(session, field);
    // drillDown() would search for nulls by an empty value when the field has no empty texts. Only empty texts have an
    // empty pattern, so search for that pattern instead.
    const bool isPattern = m_pattern.has_value() || (m_value && m_value->empty());
    ReadingLine line;
    const PrViewerDrillCursorHandle rows = session.viewer().drillDown(field.id, value, isPattern, &line, nullptr);
    if (!rows) {
        stopIfInterrupted();
        throw drillFailure(session);
    }

    std::int64_t shown = 0;
    writeRows(options, *rows, shown);
    const std::int64_t inRun = session.viewer().getDrillDownCount(field.id, value, isPattern);
    session.check(inRun >= 0 || inRun == PrViewer::kSampleOnly);
    if (!reportCount(*rows, inRun, shown) && rows->isComplete() && inRun == 0 && !value.isNull())
        say(unknownText(session, field, m_pattern ? *m_pattern : *m_value, m_pattern.has_value()));
}

} // namespace tavix::cli
