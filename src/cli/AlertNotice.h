#pragma once

#include "base/Result.h"
#include "report/AlertStates.h"

#include <string>
#include <vector>

namespace tavix::cli {

/// The run whose alerts are told.
struct NoticeOf {
    std::string repository;
    std::string job;
    int run = -1;
};

/// Warns on standard error that the program of a job's on-alert does not exist, before a run takes hours.
void warnIfNoProgram(const std::vector<std::string>& command);

/// Runs the command of a job's on-alert with the raised alerts on its standard input and their numbers in its
/// environment; without a raised alert, or without a command, does nothing. docs/alerts.md has the interface. The error
/// is a sentence.
[[nodiscard]] Status tellAlerts(const std::vector<std::string>& command, const NoticeOf& run,
                                std::vector<AlertState> alerts);

} // namespace tavix::cli
