#include "cli/AlertLists.h"

#include "base/NumberText.h"
#include "cli/Command.h"
#include "cli/CommandError.h"
#include "cli/Console.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

using State = AlertVerdict::State;

KvbDatavar cell(const std::optional<double>& number) {
    if (!number)
        return {};
    // Counts are listed without decimals.
    const std::int64_t whole = saturateToInt64(*number);
    return static_cast<double>(whole) == *number ? KvbDatavar(whole) : KvbDatavar(*number);
}

std::string stateWord(const AlertState& alert) {
    if (alert.isRaised())
        return "raised";
    return alert.verdict.state == State::Quiet ? "quiet" : "unknown";
}

std::string conditionOf(const AlertState& alert) {
    return alert.sentence.empty() ? std::string("Unable to retrieve alert properties") : alert.condition();
}

} // namespace

std::optional<AlertLevel> parseAlertLevel(const std::string& word) {
    for (const AlertLevel level : {AlertLevel::Warning, AlertLevel::Error})
        if (word == alertLevelWord(level))
            return level;
    return std::nullopt;
}

void listAlerts(const CommonOptions& options, const std::vector<AlertState>& alerts) {
    Listing listing(options);
    listing.begin({"alerts",
                   "Alerts",
                   {{"state", "State"},
                    {"level", "Level"},
                    {"table", "Table"},
                    {"type", "Type"},
                    {"input", "Input"},
                    {"figure", "Figure", Column::Kind::Number},
                    {"reference", "Reference", Column::Kind::Number},
                    {"description", "Description"},
                    {"condition", "Condition", Column::Kind::Prose}}});
    for (const AlertState& alert : alerts) {
        // The description of an alert without one of its own is the condition.
        const bool isDescribed = alert.description != alert.sentence;
        listing.row(Row{stateWord(alert), alert.rule ? std::string(alertLevelWord(alert.rule->level)) : KvbDatavar(),
                        alert.table, std::string(alertTypeWord(alert.subject)),
                        alert.isOfRecords ? KvbDatavar() : KvbDatavar(alert.input), cell(alert.figure),
                        cell(alert.verdict.reference), isDescribed ? KvbDatavar(alert.description) : KvbDatavar(),
                        conditionOf(alert)});
    }
    listing.end();
    listing.finish();
}

void sayAlerts(const std::vector<AlertState>& alerts) {
    for (const AlertState& alert : alerts) {
        if (alert.verdict.state == State::Quiet)
            continue;
        const std::string what = fmt::format("{}: {}", alert.table, conditionOf(alert));
        if (!alert.isRaised()) {
            // In the first run of a job a change is unknown, which needs no message.
            if (alert.rule && !isChange(alert.rule->comparison))
                say(fmt::format("alert not checked, the run does not have the figure: {}", what));
            continue;
        }
        std::string figure = fmt::format("it is {}", formatReadable(*alert.figure));
        if (alert.verdict.reference)
            figure += fmt::format(", was {}", formatReadable(*alert.verdict.reference));
        say(fmt::format("{}: {} ({})", alertLevelWord(alert.rule->level), what, figure));
    }
}

void sayIfNoAlert(const std::vector<AlertState>& alerts, std::string_view job) {
    if (alerts.empty())
        say(fmt::format("--fail-at has no effect: the job \"{}\" has no alert", job));
}

void failOnAlerts(const std::vector<AlertState>& alerts, AlertLevel level) {
    const auto raised =
        std::count_if(alerts.begin(), alerts.end(), [&](const AlertState& alert) { return alert.isRaisedAt(level); });
    if (raised > 0)
        throw CommandError(ExitCode::Alert,
                           fmt::format("{} {} raised at level {}{}", raised, raised == 1 ? "alert is" : "alerts are",
                                       alertLevelWord(level), level == AlertLevel::Warning ? " or above" : ""));
}

} // namespace tavix::cli
