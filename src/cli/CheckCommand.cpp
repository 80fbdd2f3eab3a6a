#include "cli/CheckCommand.h"

#include "cli/CommandError.h"
#include "cli/RepositoryChoice.h"
#include "cli/Signals.h"
#include "repository/RepositoryCheck.h"
#include "repository/Schema.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <string_view>

namespace tavix::cli {

namespace {

std::string_view stateWord(repository::Soundness state) {
    switch (state) {
    case repository::Soundness::Sound:
        return "sound";
    case repository::Soundness::Damaged:
        return "damaged";
    default:
        return "no checksum";
    }
}

KvbDatavar orNull(const std::string& text) {
    return text.empty() ? KvbDatavar() : KvbDatavar(text);
}

} // namespace

CLI::App* CheckCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("check", "Check a repository for damage");
    command->footer(
        "Reads the whole file and checks its SQLite structure, the checksums of each run and each table,\n"
        "and the packed values. Runs of earlier versions have no checksums; only their values are checked.\n"
        "Exits with code 3 if anything is damaged. Changes nothing.\n\n"
        "Examples:\n"
        "  tavix check -R profile.tavix\n"
        "  tavix check -R profile.tavix --format json");
    return command;
}

void CheckCommand::run(const CommonOptions& options) {
    auto connection = repository::openRepository(requiredRepository(options.repository), sql::OpenMode::Read);
    if (!connection)
        throw CommandError(ExitCode::Source, connection.error().text);
    (*connection)->goOnWhile([] { return !isInterrupted(); });
    Listing listing(options);
    listing.begin({"check",
                   "Check",
                   {{"job", "Job"},
                    {"run", "Run", Column::Kind::Number},
                    {"table", "Table"},
                    {"state", "State"},
                    {"problem", "Problem", Column::Kind::Prose}}});
    std::int64_t damaged = 0;
    const Status done = repository::checkRepository(**connection, [&](const repository::CheckFinding& finding) {
        stopIfInterrupted();
        damaged += finding.state == repository::Soundness::Damaged ? 1 : 0;
        listing.row(Row{orNull(finding.job), finding.run == 0 ? KvbDatavar() : KvbDatavar(finding.run),
                        orNull(finding.table), std::string(stateWord(finding.state)), orNull(finding.problem)});
    });
    stopIfInterrupted();
    if (!done)
        throw CommandError(ExitCode::Source, done.error().text);
    listing.end();
    listing.finish();
    if (damaged > 0)
        throw CommandError(ExitCode::Source,
                           fmt::format("the repository is damaged: {} problem{}", damaged, damaged == 1 ? "" : "s"));
}

} // namespace tavix::cli
