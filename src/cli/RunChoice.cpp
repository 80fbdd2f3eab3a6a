#include "cli/RunChoice.h"

#include "cli/ArgumentChecks.h"
#include "cli/Session.h"

#include <CLI/App.hpp>

namespace tavix::cli {

void addJobChoice(CLI::App& command, std::optional<std::string>& job) {
    command.add_option("-j,--job", job, "The job; may be left out when there is only one")->type_name("NAME");
}

void RunChoice::declare(CLI::App& command) {
    addJobChoice(command, m_job);
    command.add_option("--run", m_run, "The run's number, as \"tavix runs\" lists it; else the latest")
        ->type_name("N")
        ->transform(wholeNumber(1, kMostRun));
}

void RunChoice::select(Session& session) const {
    session.selectJob(m_job);
    session.selectRun(m_run);
}

} // namespace tavix::cli
