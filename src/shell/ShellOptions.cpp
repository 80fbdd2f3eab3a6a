#include "shell/ShellOptions.h"

#include <CLI/CLI.hpp>

namespace tavix::shell {

std::optional<ShellOptions> parseShellOptions(int argc, const char* const* argv, int& exitCode) {
    constexpr int kUsage = 2;
    ShellOptions options;
    CLI::App app("Shows data profiles: reports, their tables, fields and metrics.", "tavix-shell");
    app.set_version_flag("--version", TAVIX_VERSION);
    app.add_option("repository", options.repository, "Profile repository to open: a file written by tavix profile");
    app.add_option("--job", options.job, "Report to open, by the name of its job");
    std::string scheme;
    app.add_option("--scheme", scheme, "Colours for this start: light or dark; default: those chosen in the options")
        ->check(CLI::IsMember({"light", "dark"}))
        ->option_text("light|dark");
    app.footer("In the window: Ctrl+O opens a repository, Ctrl+J lists its reports, Ctrl+I shows table information, "
               "F5 reloads.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? 0 : kUsage;
        return std::nullopt;
    }
    if (!scheme.empty())
        options.scheme = colorSchemeOf(scheme);
    return options;
}

} // namespace tavix::shell
