#include "cli/ProfileCommand.h"

#include "base/Ascii.h"
#include "base/HeldRepositories.h"
#include "cli/AlertLists.h"
#include "cli/AlertNotice.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DamageReport.h"
#include "cli/DryRun.h"
#include "cli/ProgressLine.h"
#include "cli/RepositoryChoice.h"
#include "cli/Session.h"
#include "cli/Signals.h"
#include "cli/SourceCredentials.h"
#include "cli/TablesCommand.h"
#include "job/JobChecks.h"
#include "job/JobDescription.h"
#include "profiling/Databases.h"
#include "profiling/JobPlan.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

namespace tavix::cli {

namespace {

constexpr std::int64_t kMostThreads = 256;
constexpr std::size_t kNamedFiles = 10;

bool isJobFile(const std::string& path) {
    const std::string ending = asciiLower(std::filesystem::path(path).extension().string());
    return ending == ".yaml" || ending == ".yml";
}

/// The repository file that the user or the job file names.
std::string fileToWrite(const std::string& text) {
    if (text.starts_with("postgres:") || text.starts_with("postgresql:"))
        throw CommandError(ExitCode::Usage, "runs are stored in repository files, not yet on a PostgreSQL server");
    return repositoryFile(text);
}

template <typename Value>
Value orUsageError(Result<Value> result) {
    if (!result)
        throw CommandError(ExitCode::Usage, result.error().text);
    return std::move(result).value();
}

void checkUsage(const Status& checked) {
    if (!checked)
        throw CommandError(ExitCode::Usage, checked.error().text);
}

void listOutcome(Listing& listing, const job::JobDescription& job, const profiling::RunOutcome& outcome) {
    Section section{"tables",
                    "Tables",
                    {{"job", "Job"},
                     {"run", "Run", Column::Kind::Number},
                     {"table", "Table"},
                     {"fields", "Fields", Column::Kind::Number}}};
    const std::vector<Column> records = recordColumns();
    section.columns.insert(section.columns.end(), records.begin(), records.end());
    section.columns.push_back({"sample", "Sample"});
    listing.begin(section);
    for (const profiling::TableOutcome& table : outcome.tables)
        listing.row(Row{job.name, outcome.runId, table.name, static_cast<std::int64_t>(table.fields),
                        table.rowsOfSource, table.rows, table.damagedRows,
                        table.sample.empty() ? KvbDatavar() : KvbDatavar(table.sample)});
    listing.end();
}

/// Throws CommandError with ExitCode::Partial when files were left out.
void endPartial(const std::vector<profiling::EmptyFile>& leftOut) {
    if (leftOut.empty())
        return;
    std::string text;
    for (std::size_t i = 0; i < std::min(leftOut.size(), kNamedFiles); ++i)
        text += (i == 0 ? "" : "; ") + profiling::emptyFileText(leftOut[i]);
    if (leftOut.size() > kNamedFiles)
        text += fmt::format("; and {} more", leftOut.size() - kNamedFiles);
    throw CommandError(ExitCode::Partial, text);
}

std::string fileOf(const job::JobDescription& job, const std::string& table) {
    for (const job::TableDescription& description : job.tables)
        if (description.name == table && !description.isDatabase())
            return std::filesystem::path(description.path).filename().string();
    return table;
}

} // namespace

CLI::App* ProfileCommand::declare(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("profile", "Profile text files, or the tables of a job file, as a new run");
    command
        ->add_option("FILE", m_files,
                     "Text files (CSV and the like), patterns in quotes ('*.csv'), or one job file (.yaml, .yml)")
        ->required()
        ->type_name("");
    command
        ->add_option("-j,--job", m_job,
                     "The job that the run belongs to; a new one is created. Default: the name of the first file")
        ->type_name("NAME");
    command
        ->add_option(
            "--one-table", m_oneTable,
            "Combine all files into one table of this name; they must have the same columns. Default: a table for "
            "each file")
        ->type_name("NAME");
    m_reading.declare(*command);
    m_reading.declareSample(*command);
    command->add_option("--description", m_description, "A remark to store with the run")->type_name("TEXT");
    command->add_flag("--explain", m_explain,
                      "Show the statements that databases would run, and why some rows must be read; profile nothing");
    command->add_option("--threads", m_threads, "The number of threads. Default: one for each core")
        ->transform(wholeNumber(1, kMostThreads))
        ->type_name("N");
    command
        ->add_option("--memory", m_memory,
                     "The memory that the run may use, such as 500M or 2G. Default: half of the machine's. Larger data "
                     "goes to a temporary file in TMPDIR, or in the folder of the repository")
        ->transform(memorySize())
        ->type_name("SIZE");
    command
        ->add_option(
            "--fail-at", m_failAt,
            "warning or error: exit with code 1 if the run raises an alert of this level or a higher one. The run "
            "is stored in any case")
        ->type_name("LEVEL")
        ->transform(oneOf({"warning", "error"}));
    command->add_flag(
        "--dry-run", m_dryRun,
        "Open the sources, show what a run would compute and how long the last run took, and write nothing. "
        "The exit code is that of a run that fails before it reads rows, else 0");
    command->footer("The repository is a file and is created if it does not exist. Profiling a job again adds a run.\n"
                    "A run is stored completely or not at all, even if the program is killed.\n\n"
                    "Examples:\n"
                    "  tavix profile sales.csv customers.csv -R profile.tavix --job sales\n"
                    "  tavix profile export.txt -R profile.tavix --delimiter tab --no-header --encoding 1252\n"
                    "  tavix profile 'sales/2024-*.csv' -R profile.tavix --one-table sales --every 10\n"
                    "  tavix profile job.yaml\n"
                    "  tavix profile job.yaml --explain");
    return command;
}

job::JobDescription ProfileCommand::describeJobFile(const std::string& path) const {
    if (m_files.size() > 1)
        throw CommandError(ExitCode::Usage,
                           "a job file cannot be combined with other files: it names the files to profile");
    if (m_job || m_oneTable || m_reading.isAnyGiven())
        throw CommandError(ExitCode::Usage,
                           "--job, --one-table and the options for reading and sampling are for text files; a job file "
                           "has its own");
    job::JobDescription job = orUsageError(job::readJobFile(path));
    const HeldRepository held(repositoryFile(job.repository));
    checkUsage(profiling::checkFields(job));
    return job;
}

job::JobDescription ProfileCommand::describe() const {
    (void)existingFiles(m_files); // throws for a missing file
    const auto jobFile = std::find_if(m_files.begin(), m_files.end(), isJobFile);
    if (jobFile != m_files.end())
        return describeJobFile(*jobFile);
    for (const auto& [what, name] : {std::pair("job", &m_job), std::pair("table", &m_oneTable)})
        if (*name)
            checkUsage(job::checkGivenName(what, **name));
    return orUsageError(job::describeFiles(m_files, m_job.value_or(""), m_reading.reading(), m_oneTable.value_or("")));
}

void ProfileCommand::explain(const job::JobDescription& job, const CommonOptions& options) const {
    const auto tables = profiling::explainJob(job, sourceCredentials());
    if (!tables)
        throw CommandError(ExitCode::Source, tables.error().text);
    Listing listing(options);
    listing.begin({"statements",
                   "Statements",
                   {{"table", "Table"},
                    {"source", "Source"},
                    {"rows_read", "Rows are read because"},
                    {"statement", "Statement", Column::Kind::Prose}}});
    for (const profiling::TableExplanation& table : *tables) {
        const KvbDatavar reason = table.reason.empty() ? KvbDatavar() : KvbDatavar(table.reason);
        if (table.statements.empty())
            listing.row(Row{table.table, table.source, reason, KvbDatavar()});
        for (const std::string& statement : table.statements)
            listing.row(Row{table.table, table.source, reason, statement});
    }
    listing.end();
    listing.finish();
}

void ProfileCommand::run(const CommonOptions& options) {
    checkUsage(job::checkDescription("run", m_description));
    const job::JobDescription job = describe();
    if (m_explain) {
        explain(job, options);
        return;
    }
    const std::string& named = options.repository.empty() ? job.repository : options.repository;
    const std::string repository = fileToWrite(chosenRepository(named));
    if (repository.empty())
        throw CommandError(ExitCode::Usage,
                           "where shall the run go? Name a repository with --repository FILE, or in TAVIX_REPOSITORY");
    const HeldRepository held(repository);
    warnIfNoProgram(job.onAlert);
    if (m_dryRun) {
        auto plan = profiling::planJob(job, repository, sourceCredentials(), [] { return !isInterrupted(); });
        stopIfInterrupted();
        if (!plan)
            throw CommandError(ExitCode::Source, plan.error().text);
        for (const std::string& remark : plan->remarks)
            say(remark);
        listPlan(options, *plan, repository);
        endPartial(plan->leftOut);
        return;
    }
    Listing listing(options);
    Result<profiling::RunOutcome> result = [&] {
        ProgressLine progress;
        profiling::RunOptions runOptions;
        runOptions.description = m_description;
        runOptions.watcher = &progress;
        runOptions.askCredentials = sourceCredentials();
        runOptions.threads = m_threads;
        runOptions.memory = m_memory;
        return profiling::runJob(job, repository, runOptions);
    }();
    if (!result)
        throw CommandError(ExitCode::Source, result.error().text);
    if (result->cancelled)
        throw CommandError(ExitCode::Cancelled, "cancelled; nothing was stored");
    for (const profiling::TableOutcome& table : result->tables) {
        if (const std::string text = damageText(fileOf(job, table.name), table); !text.empty())
            say(text);
        for (const std::string& remark : table.remarks)
            say(remark);
    }
    say(fmt::format("run {} of job \"{}\" is stored in {} ({:.1f} s)", result->runId, job.name, repository,
                    result->seconds));
    listOutcome(listing, job, *result);
    listing.finish();
    checkAlerts(repository, job, *result);
    endPartial(result->leftOut);
}

void ProfileCommand::checkAlerts(const std::string& repository, const job::JobDescription& job,
                                 const profiling::RunOutcome& outcome) const {
    const std::vector<AlertState> alerts = [&] {
        // Closed before a program is started that may use the repository.
        Session session(repository);
        session.check(session.viewer().setCurrentJobSetup(outcome.jobId));
        session.check(session.viewer().setCurrentJob(outcome.runId));
        return readAlertStates(session.viewer(), outcome.jobId);
    }();
    sayAlerts(alerts);
    const Status told = tellAlerts(job.onAlert, {repository, job.name, outcome.runId}, alerts);
    if (!told)
        say(told.error().text);
    if (!m_failAt.empty())
        sayIfNoAlert(alerts, job.name);
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts(alerts, *level);
    if (!told)
        throw CommandError(ExitCode::NotTold, "the run is stored, but nobody was told of its alerts");
}

} // namespace tavix::cli
