#include "cli/RunChoice.h"

#include <CLI/App.hpp>

namespace tavix::cli {

void addRunChoice(CLI::App& command, std::optional<std::string>& job, std::optional<int>& run) {
    command.add_option("-j,--job", job, "The job; may be left out when there is only one")->type_name("NAME");
    command.add_option("--run", run, "The run's number, as \"tavix runs\" lists it; else the latest")->type_name("N");
}

} // namespace tavix::cli
