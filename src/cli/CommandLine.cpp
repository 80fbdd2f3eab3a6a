#include "cli/CommandLine.h"

#include "base/GenException.h"
#include "base/HeldRepositories.h"
#include "cli/AlertsCommand.h"
#include "cli/ArgumentChecks.h"
#include "cli/CheckCommand.h"
#include "cli/CommandError.h"
#include "cli/CompareCommand.h"
#include "cli/Console.h"
#include "cli/DeleteHistoryCommand.h"
#include "cli/FieldsCommand.h"
#include "cli/FindingsCommand.h"
#include "cli/FunctionsCommand.h"
#include "cli/HelpFormatter.h"
#include "cli/InspectCommand.h"
#include "cli/JobsCommand.h"
#include "cli/NotesCommand.h"
#include "cli/ProfileCommand.h"
#include "cli/RowsCommand.h"
#include "cli/RulesCommand.h"
#include "cli/RunsCommand.h"
#include "cli/ShowCommand.h"
#include "cli/Signals.h"
#include "cli/SuggestCommand.h"
#include "cli/TablesCommand.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::cli {

namespace {

constexpr const char* kAbout =
    "Profiles tables and shows their contents: the values of every field with their counts, patterns,\n"
    "percentiles, outliers and 24 metrics. Every run is kept in a repository file.";

constexpr const char* kFooter =
    "Examples:\n"
    "  tavix inspect sales.csv                                   how a file would be read\n"
    "  tavix profile sales.csv customers.csv -R profile.tavix    profile two files\n"
    "  tavix tables -R profile.tavix                             the tables that were profiled\n"
    "  tavix fields -R profile.tavix --table sales               the fields of a table\n"
    "  tavix show -R profile.tavix --field sales.city            everything about a field\n"
    "  tavix show -R profile.tavix --field sales.city --values --format csv -o city.csv\n"
    "  tavix rows -R profile.tavix sales.city --value Berlin     the source rows with a value\n"
    "\n"
    "\"tavix COMMAND --help\" describes a command.\n"
    "Results go to standard output, messages to standard error.\n"
    "Exit codes: 0 success; 1 success, but an alert is raised or a finding is open (--fail-at);\n"
    "2 wrong arguments or job file;\n"
    "3 a source, the repository or the output failed;\n"
    "4 cancelled, or the run was stored without its empty files;\n"
    "5 the run was stored, but the job's command for raised alerts failed.";

using Commands = std::vector<std::unique_ptr<Command>>;

template <typename Made>
std::unique_ptr<Command> make() {
    return std::make_unique<Made>();
}

struct KnownCommand {
    std::string_view name; ///< as the command declares it
    std::unique_ptr<Command> (*make)();
};

constexpr KnownCommand kCommands[] = {
    {"inspect", make<InspectCommand>},     {"profile", make<ProfileCommand>},
    {"jobs", make<JobsCommand>},           {"runs", make<RunsCommand>},
    {"tables", make<TablesCommand>},       {"fields", make<FieldsCommand>},
    {"show", make<ShowCommand>},           {"rows", make<RowsCommand>},
    {"compare", make<CompareCommand>},     {"rules", make<RulesCommand>},
    {"alerts", make<AlertsCommand>},       {"findings", make<FindingsCommand>},
    {"notes", make<NotesCommand>},         {"suggest", make<SuggestCommand>},
    {"functions", make<FunctionsCommand>}, {"delete-history", make<DeleteHistoryCommand>},
    {"check", make<CheckCommand>},
};

/// The command with that name; all commands when there is none. Declaring all of them would take as long as some of
/// them run.
Commands makeCommands(std::string_view wanted) {
    Commands commands;
    for (const KnownCommand& known : kCommands)
        if (known.name == wanted)
            commands.push_back(known.make());
    if (commands.empty())
        for (const KnownCommand& known : kCommands)
            commands.push_back(known.make());
    return commands;
}

/// Every command declares these as its own too: its help shows them, and they are accepted before and after its name.
void addCommonOptions(CLI::App& app, CommonOptions& options) {
    constexpr const char* kGroup = "Common options";
    // Declared again to list it in this group instead of before the options of the command.
    app.set_help_flag();
    app.set_help_flag("-h,--help", "Print this help and exit")->group(kGroup);
    static const std::map<std::string, Format> kFormats{
        {"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}};
    app.add_option("-R,--repository", options.repository, "The repository: a file, or sqlite:FILE")
        ->type_name("FILE")
        ->group(kGroup);
    app.add_option("--format", options.format, "text (default), json or csv")
        ->transform(CLI::Transformer(kFormats).description(""))
        ->transform(oneOf({"text", "json", "csv"}))
        ->type_name("FORMAT")
        ->group(kGroup);
    app.add_option("-o,--output", options.outputPath, "Write the result to this file, completely or not at all")
        ->type_name("FILE")
        ->group(kGroup);
    app.add_flag("--spreadsheet", options.spreadsheet,
                 "With csv: put ' before text that a spreadsheet would take for a formula (=, +, -, @)")
        ->group(kGroup);
}

ExitCode runGuarded(Command& command, const CommonOptions& options) {
    try {
        if (options.spreadsheet && options.format != Format::Csv)
            throw CommandError(ExitCode::Usage, "--spreadsheet goes with --format csv");
        // Held before any file is opened, because the output or a source may be the repository itself.
        std::optional<HeldRepository> held;
        if (!options.repository.empty())
            held.emplace(repositoryFile(options.repository));
        command.run(options);
        return ExitCode::Ok;
    } catch (const OutputClosed&) {
        return ExitCode::Ok;
    } catch (const CommandError& error) {
        say(error.what());
        return error.code();
    } catch (const GenException& error) {
        say(error.what());
    } catch (const std::bad_alloc&) {
        say("there is not enough memory");
    } catch (const std::exception& error) {
        say(fmt::format("unexpected failure: {}", error.what()));
    }
    return ExitCode::Source;
}

/// Reports wrong arguments and points to the help.
void sayUsage(const CLI::App& program, const CLI::ParseError& error) {
    const std::vector<const CLI::App*> used =
        program.get_subcommands([](const CLI::App* sub) { return sub->parsed() && !sub->get_name().empty(); });
    const std::vector<std::string> unknown = program.remaining();
    if (used.empty() && !unknown.empty())
        say(fmt::format("there is no command \"{}\"", unknown.front()));
    else
        say(error.what());
    sayPlain(fmt::format("See \"tavix {}--help\".", used.empty() ? "" : used.front()->get_name() + " "));
}

/// Splits "--value=" into "--value" and an empty argument; CLI11 would take the next argument as the value.
std::vector<const char*> withEmptyValues(int argc, const char* const* argv, std::deque<std::string>& names) {
    std::vector<const char*> arguments;
    bool isOption = true;
    for (int i = 0; i < argc; ++i) {
        const std::string_view argument = argv[i];
        isOption = isOption && argument != "--";
        if (isOption && argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
            arguments.push_back(names.emplace_back(argument.substr(0, argument.size() - 1)).c_str());
            arguments.push_back("");
        } else {
            arguments.push_back(argv[i]);
        }
    }
    return arguments;
}

} // namespace

int runCommandLine(int argc, const char* const* argv) {
    // A closed pipe is reported by write(), not by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    watchSignals();

    CommonOptions options;
    Commands commands = makeCommands(argc > 1 ? argv[1] : "");
    CLI::App program(kAbout, "tavix");
    program.formatter(std::make_shared<HelpFormatter>());
    program.set_version_flag("--version", "tavix " TAVIX_VERSION);
    program.require_subcommand(1);
    program.footer(kFooter);
    addCommonOptions(program, options);
    std::vector<std::pair<CLI::App*, Command*>> declared;
    for (const std::unique_ptr<Command>& command : commands) {
        CLI::App* app = command->declare(program);
        addCommonOptions(*app, options);
        declared.emplace_back(app, command.get());
    }

    if (argc <= 1) {
        sayPlain(program.help());
        return static_cast<int>(ExitCode::Usage);
    }
    std::deque<std::string> names;
    const std::vector<const char*> arguments = withEmptyValues(argc, argv, names);
    try {
        program.parse(static_cast<int>(arguments.size()), arguments.data());
    } catch (const CLI::Success& wanted) {
        return program.exit(wanted); // help or version
    } catch (const CLI::ParseError& error) {
        sayUsage(program, error);
        return static_cast<int>(ExitCode::Usage);
    }
    const auto chosen = std::find_if(declared.begin(), declared.end(), [](const auto& d) { return d.first->parsed(); });
    return static_cast<int>(runGuarded(*chosen->second, options));
}

} // namespace tavix::cli
