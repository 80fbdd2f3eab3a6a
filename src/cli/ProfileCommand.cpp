#include "cli/ProfileCommand.h"

#include "cli/AlertLists.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DamageReport.h"
#include "cli/DryRun.h"
#include "cli/ProgressLine.h"
#include "cli/Session.h"
#include "profiling/JobDescription.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace tavix::cli {

namespace {

bool isJobFile(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return ending == ".yaml" || ending == ".yml";
}

/// A file that is not there is a failing source and no wrong usage, so it is told apart before the job is described.
void requireFiles(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::status(file, error);
        if (!std::filesystem::exists(status))
            throw CommandError(ExitCode::Source, fmt::format("cannot read \"{}\": {}", file,
                                                             error ? error.message() : std::string("no such file")));
        if (std::filesystem::is_directory(status))
            throw CommandError(ExitCode::Source, fmt::format("cannot read \"{}\": it is a folder", file));
    }
}

/// The file behind what the user or the job file gave.
std::string repositoryFile(const std::string& text) {
    constexpr std::string_view kScheme = "sqlite:";
    if (text.starts_with("postgres:") || text.starts_with("postgresql:"))
        throw CommandError(ExitCode::Usage, "runs are stored in repository files, not yet on a PostgreSQL server");
    return text.starts_with(kScheme) ? text.substr(kScheme.size()) : text;
}

template <typename Value>
Value orUsageError(Result<Value> result) {
    if (!result)
        throw CommandError(ExitCode::Usage, result.error().text);
    return std::move(result).value();
}

void listOutcome(Listing& listing, const profiling::JobDescription& job, const profiling::RunOutcome& outcome) {
    listing.begin({"tables",
                   "Tables",
                   {{"job", "Job"},
                    {"run", "Run", Column::Kind::Number},
                    {"table", "Table"},
                    {"fields", "Fields", Column::Kind::Number},
                    {"records", "Records", Column::Kind::Number},
                    {"damaged_records", "Damaged", Column::Kind::Number}}});
    for (const profiling::TableOutcome& table : outcome.tables)
        listing.row(Row{job.name, outcome.runId, table.name, static_cast<std::int64_t>(table.fields), table.rows,
                        table.damagedRows});
    listing.end();
}

std::string fileOf(const profiling::JobDescription& job, const std::string& table) {
    for (const profiling::TableDescription& description : job.tables)
        if (description.name == table)
            return std::filesystem::path(description.path).filename().string();
    return table;
}

} // namespace

std::optional<char> parseDelimiter(const std::string& text) {
    struct Name {
        std::string_view text;
        char delimiter;
    };
    constexpr std::array<Name, 5> kNames{
        {{"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}, {"\\t", '\t'}, {"pipe", '|'}}};
    for (const Name& name : kNames)
        if (text == name.text)
            return name.delimiter;
    if (text.size() != 1 || text == "\"" || text == "\n" || text == "\r" || text.front() < 0 || text.front() == 0)
        return std::nullopt;
    return text.front();
}

CLI::App* ProfileCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("profile", "Profile text files, or what a job file names, as a new run");
    command->add_option("FILE", m_files, "Text files (CSV and kin, UTF-8), or one job file (.yaml, .yml)")
        ->required()
        ->type_name("");
    command
        ->add_option("-j,--job", m_job,
                     "The job that gets the run; made when it is new. Without it the first file's name")
        ->type_name("NAME");
    command
        ->add_option("--delimiter", m_delimiter,
                     "What separates cells: a character, or comma, semicolon, tab, pipe. Without it, found in the file")
        ->type_name("C");
    command->add_flag("--no-header", m_noHeader, "The first line holds data and not the names of the fields");
    command->add_option("--description", m_description, "A remark that is kept with the run")->type_name("TEXT");
    command
        ->add_option("--fail-at", m_failAt,
                     "warning or error: end with exit code 1 when the run raises an alert of this level or a higher "
                     "one. The run is stored all the same")
        ->type_name("LEVEL")
        ->check(CLI::IsMember({"warning", "error"}).description(""));
    command->add_flag("--dry-run", m_dryRun,
                      "Only say what would be read and computed, and how long the last run took; write nothing");
    command->footer("The repository is a file; it is made when it does not exist. Profiling a job again adds a run.\n"
                    "A run is stored whole or not at all, however the program ends.\n\n"
                    "Examples:\n"
                    "  tavix profile sales.csv customers.csv -R profile.tavix --job sales\n"
                    "  tavix profile export.txt -R profile.tavix --delimiter tab --no-header\n"
                    "  tavix profile job.yaml");
    return command;
}

profiling::JobDescription ProfileCommand::describeJobFile(const std::string& path) const {
    if (m_files.size() > 1)
        throw CommandError(ExitCode::Usage, "a job file stands alone: it names the files to profile itself");
    if (!m_job.empty() || !m_delimiter.empty() || m_noHeader)
        throw CommandError(ExitCode::Usage,
                           "--job, --delimiter and --no-header are for text files; a job file says these itself");
    profiling::JobDescription job = orUsageError(profiling::readJobFile(path));
    if (Status status = profiling::checkFields(job); !status)
        throw CommandError(ExitCode::Usage, status.error().text);
    return job;
}

profiling::JobDescription ProfileCommand::describe() const {
    requireFiles(m_files);
    const auto jobFile = std::find_if(m_files.begin(), m_files.end(), isJobFile);
    if (jobFile != m_files.end())
        return describeJobFile(*jobFile);
    std::optional<char> delimiter;
    if (!m_delimiter.empty()) {
        delimiter = parseDelimiter(m_delimiter);
        if (!delimiter)
            throw CommandError(ExitCode::Usage,
                               fmt::format("\"{}\" cannot separate cells: give one ASCII character, or comma, "
                                           "semicolon, tab or pipe",
                                           m_delimiter));
    }
    return orUsageError(profiling::describeFiles(m_files, m_job, delimiter, !m_noHeader));
}

void ProfileCommand::run(const CommonOptions& options) {
    const profiling::JobDescription job = describe();
    const std::string repository = repositoryFile(options.repository.empty() ? job.repository : options.repository);
    if (repository.empty())
        throw CommandError(ExitCode::Usage, "where shall the run go? Name a repository with --repository FILE");
    if (m_dryRun) {
        listPlan(options, job, repository);
        return;
    }
    Listing listing(options);
    Result<profiling::RunOutcome> result = [&] {
        ProgressLine progress;
        profiling::RunOptions runOptions;
        runOptions.description = m_description;
        runOptions.watcher = &progress;
        return profiling::runJob(job, repository, runOptions);
    }();
    if (!result)
        throw CommandError(ExitCode::Source, result.error().text);
    if (result->cancelled)
        throw CommandError(ExitCode::Cancelled, "cancelled; nothing was stored");
    for (const profiling::TableOutcome& table : result->tables)
        if (const std::string text = damageText(fileOf(job, table.name), table); !text.empty())
            say(text);
    say(fmt::format("run {} of job \"{}\" is stored in {} ({:.1f} s)", result->runId, job.name, repository,
                    result->seconds));
    listOutcome(listing, job, *result);
    listing.finish();
    checkAlerts(repository, *result);
}

void ProfileCommand::checkAlerts(const std::string& repository, const profiling::RunOutcome& outcome) const {
    Session session(repository);
    session.check(session.viewer().setCurrentJobSetup(outcome.jobId));
    session.check(session.viewer().setCurrentJob(outcome.runId));
    const std::vector<AlertState> alerts = readAlertStates(session.viewer(), outcome.jobId);
    sayAlerts(alerts);
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts(alerts, *level);
}

} // namespace tavix::cli
