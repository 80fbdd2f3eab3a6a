#include "cli/FunctionsCommand.h"

#include "access/PrViewer.h"
#include "filter/FunctionTexts.h"

#include <CLI/App.hpp>

namespace tavix::cli {

namespace {

/// "string, integer[, string]"; "..." marks a last argument that may be repeated.
std::string parameterWords(std::string_view types, int needed, int most) {
    std::string words;
    for (std::size_t i = 0; i < types.size(); ++i) {
        const bool isOptional = static_cast<int>(i) >= needed;
        words += isOptional ? "[" : "";
        words += i > 0 ? ", " : "";
        words += TypeWord(types[i]);
        words += isOptional ? "]" : "";
    }
    return most > static_cast<int>(types.size()) ? words + ", ..." : words;
}

} // namespace

CLI::App* FunctionsCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("functions", "List the functions of the expression language");
    command->footer("Examples:\n  tavix functions\n  tavix functions --format csv -o functions.csv");
    return command;
}

void FunctionsCommand::run(const CommonOptions& options) {
    Listing listing(options);
    listing.begin({"functions",
                   "Functions",
                   {{"function", "Function"},
                    {"parameters", "Parameters"},
                    {"result", "Result"},
                    {"description", "Description", Column::Kind::Prose}}});
    const PrViewer::Handle viewer = PrViewer::create();
    KvbString name;
    KvbString types;
    KvbString description;
    char result = 0;
    int needed = 0;
    int most = 0;
    for (int index = 0; index < viewer->getFunctionCount(); ++index) {
        if (viewer->getFunctionInfo(index, name, types, result, description, needed, most))
            listing.row(
                Row{name, parameterWords(types.view(), needed, most), std::string(TypeWord(result)), description});
    }
    listing.end();
    listing.finish();
}

} // namespace tavix::cli
