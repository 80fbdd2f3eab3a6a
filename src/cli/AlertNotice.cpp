#include "cli/AlertNotice.h"

#include "cli/AlertLists.h"
#include "cli/ChildProgram.h"
#include "cli/Console.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

namespace tavix::cli {

namespace {

/// A program that waits for somebody must not hold up the jobs after this one.
constexpr std::chrono::seconds kLimit{60};

/// The passwords of databases are none of its business.
constexpr std::string_view kSecrets = "TAVIX_SOURCE_";

std::vector<std::string> environmentOf(const NoticeOf& run, const std::vector<AlertState>& raised) {
    const AlertCounts counts = countAlerts(raised);
    const auto started =
        std::count_if(raised.begin(), raised.end(), [](const AlertState& alert) { return alert.raisedRuns <= 1; });
    std::error_code failure;
    const auto repository = std::filesystem::absolute(run.repository, failure);
    const std::vector<std::pair<std::string_view, std::string>> values{
        {"TAVIX_REPOSITORY", failure ? run.repository : repository.string()},
        {"TAVIX_JOB", run.job},
        {"TAVIX_RUN", fmt::format("{}", run.run)},
        {"TAVIX_LEVEL", std::string(alertLevelWord(counts.errors > 0 ? AlertLevel::Error : AlertLevel::Warning))},
        {"TAVIX_ERRORS", fmt::format("{}", counts.errors)},
        {"TAVIX_WARNINGS", fmt::format("{}", counts.warnings)},
        {"TAVIX_NEW", fmt::format("{}", started)}};
    std::vector<std::string> environment = environmentWithout(kSecrets);
    for (const auto& [name, value] : values) {
        const std::string begin = fmt::format("{}=", name);
        std::erase_if(environment, [&](const std::string& one) { return one.starts_with(begin); });
        environment.push_back(begin + value);
    }
    return environment;
}

} // namespace

void warnIfNoProgram(const std::vector<std::string>& command) {
    if (!command.empty() && !isProgram(command.front()))
        say(fmt::format("the job's on-alert names a program that cannot be run here: {}", command.front()));
}

Status tellAlerts(const std::vector<std::string>& command, const NoticeOf& run, std::vector<AlertState> alerts) {
    std::erase_if(alerts, [](const AlertState& alert) { return !alert.isRaised(); });
    if (command.empty() || alerts.empty())
        return {};
    orderAlerts(alerts);
    ChildProgram child;
    child.command = command;
    child.environment = environmentOf(run, alerts);
    child.input = alertsJson(alerts, run.job);
    child.limit = kLimit;
    if (const Status ended = runChild(child); !ended)
        return Error{fmt::format("the program of on-alert, {}, has failed: {}", command.front(), ended.error().text)};
    return {};
}

} // namespace tavix::cli
