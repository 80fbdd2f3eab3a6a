#include "cli/ProfileCommand.h"

#include "base/Ascii.h"
#include "base/HeldRepositories.h"
#include "cli/AlertLists.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DamageReport.h"
#include "cli/DryRun.h"
#include "cli/Interruption.h"
#include "cli/ProgressLine.h"
#include "cli/RepositoryChoice.h"
#include "cli/Session.h"
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

/// The file behind what the user or the job file gave.
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

/// Ends the command when files were left out.
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
    CLI::App* command = program.add_subcommand("profile", "Profile text files, or what a job file names, as a new run");
    command
        ->add_option("FILE", m_files,
                     "Text files (CSV and kin), patterns in quotes ('*.csv'), or one job file (.yaml, .yml)")
        ->required()
        ->type_name("");
    command
        ->add_option("-j,--job", m_job,
                     "The job that gets the run; made when it is new. Without it the first file's name")
        ->type_name("NAME");
    command
        ->add_option("--one-table", m_oneTable,
                     "All files have the same columns and make one table of this name; without it, each is a table")
        ->type_name("NAME");
    m_reading.declare(*command);
    m_reading.declareSample(*command);
    command->add_option("--description", m_description, "A remark that is kept with the run")->type_name("TEXT");
    command->add_flag(
        "--explain", m_explain,
        "Show what databases would be asked, and why rows are read where they cannot count; nothing is run");
    command->add_option("--threads", m_threads, "How many threads work. Without it, as many as the machine has cores")
        ->transform(wholeNumber(1, kMostThreads))
        ->type_name("N");
    command
        ->add_option("--memory", m_memory,
                     "How much memory the run may take, as 500M or 2G. Without it, half of the machine's; what needs "
                     "more goes to a temporary file in TMPDIR, or beside the repository")
        ->transform(memorySize())
        ->type_name("SIZE");
    command
        ->add_option("--fail-at", m_failAt,
                     "warning or error: end with exit code 1 when the run raises an alert of this level or a higher "
                     "one. The run is stored all the same")
        ->type_name("LEVEL")
        ->transform(oneOf({"warning", "error"}));
    command->add_flag("--dry-run", m_dryRun,
                      "Only open what would be read, say what would be computed and how long the last run took; write "
                      "nothing. It ends with the exit code that a run would begin with");
    command->footer("The repository is a file; it is made when it does not exist. Profiling a job again adds a run.\n"
                    "A run is stored whole or not at all, however the program ends.\n\n"
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
        throw CommandError(ExitCode::Usage, "a job file stands alone: it names the files to profile itself");
    if (m_job || m_oneTable || m_reading.isAnyGiven())
        throw CommandError(ExitCode::Usage,
                           "--job, --one-table and what says how files are read and sampled are for text "
                           "files; a job file says these itself");
    job::JobDescription job = orUsageError(job::readJobFile(path));
    const HeldRepository held(repositoryFile(job.repository));
    checkUsage(profiling::checkFields(job));
    return job;
}

job::JobDescription ProfileCommand::describe() const {
    (void)existingFiles(m_files); // throws for what is not there
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
    checkAlerts(repository, job.name, *result);
    endPartial(result->leftOut);
}

void ProfileCommand::checkAlerts(const std::string& repository, const std::string& job,
                                 const profiling::RunOutcome& outcome) const {
    Session session(repository);
    session.check(session.viewer().setCurrentJobSetup(outcome.jobId));
    session.check(session.viewer().setCurrentJob(outcome.runId));
    const std::vector<AlertState> alerts = readAlertStates(session.viewer(), outcome.jobId);
    sayAlerts(alerts);
    if (!m_failAt.empty())
        sayIfNoAlert(alerts, job);
    if (const auto level = parseAlertLevel(m_failAt))
        failOnAlerts(alerts, *level);
}

} // namespace tavix::cli
