#include "cli/RunChoice.h"

#include "cli/ArgumentChecks.h"
#include "cli/Session.h"

#include <CLI/App.hpp>

namespace tavix::cli {

void addJobChoice(CLI::App& command, std::optional<std::string>& job) {
    command.add_option("-j,--job", job, "The job. May be omitted if there is only one")->type_name("NAME");
}

void RunChoice::declare(CLI::App& command) {
    addJobChoice(command, m_job);
    command.add_option("--run", m_run, "The number of the run, as listed by \"tavix runs\". Default: the latest")
        ->type_name("N")
        ->transform(wholeNumber(1, kMostRun));
}

void RunChoice::select(Session& session) const {
    session.selectJob(m_job);
    session.selectRun(m_run);
}

} // namespace tavix::cli
