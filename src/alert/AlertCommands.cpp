#include "alert/AlertCommands.h"

#include <algorithm>
#include <string_view>

namespace tavix {

namespace {

constexpr std::string_view kNone = "No alert is selected";
constexpr std::string_view kSeveral = "Select one alert";
constexpr std::string_view kOtherReport = "The alert belongs to another report: open that report first";
constexpr std::string_view kNoRule = "The rule of the alert cannot be read";
constexpr std::string_view kOfJob = "The job file defines the alert: each run would restore it";

/// Why the command needs other alerts; empty if these will do.
std::string_view obstacleOf(AlertCommand command, const std::vector<AlertState>& alerts, int job) {
    const auto isForeign = [job](const AlertState& alert) { return alert.job != job; };
    const bool isForOne =
        command == AlertCommand::Edit || command == AlertCommand::Notes || command == AlertCommand::CopyToFields;
    if (alerts.empty())
        return kNone;
    if (isForOne && alerts.size() > 1)
        return kSeveral;
    const AlertState& first = alerts.front();
    switch (command) {
    case AlertCommand::Edit:
        return isForeign(first) ? kOtherReport : first.rule ? std::string_view() : kNoRule;
    case AlertCommand::CopyToFields:
        if (first.subject != AlertSubject::StandardMetric || first.isOfRecords)
            return "The alert does not watch the metric of a field";
        return isForeign(first) ? kOtherReport : first.rule ? std::string_view() : kNoRule;
    case AlertCommand::Mute:
        return std::ranges::any_of(alerts, isForeign) ? kOtherReport : std::string_view();
    case AlertCommand::Unmute:
        return std::ranges::any_of(alerts, [](const AlertState& alert) { return alert.mute.has_value(); })
                   ? std::string_view()
                   : "The alert is not muted in this run";
    case AlertCommand::Remove:
        return std::ranges::all_of(alerts, &AlertState::isOfUser) ? std::string_view() : kOfJob;
    case AlertCommand::Add:
    case AlertCommand::Notes:
        break;
    }
    return {};
}

struct Words {
    std::string_view text;
    std::string_view toolTip;
};

Words wordsOf(AlertCommand command, const std::vector<AlertState>& alerts) {
    switch (command) {
    case AlertCommand::Add:
        return {"&Add Alert...", "Warn when a run's figure crosses a limit"};
    case AlertCommand::Edit:
        if (!alerts.empty() && !alerts.front().isOfUser)
            return {"&Edit as Own Alert...",
                    "The job file defines the alert: your changes are stored as an alert of your own"};
        return {"&Edit...", "Change the limit, the level or the description"};
    case AlertCommand::Mute:
        if (!alerts.empty() &&
            std::ranges::all_of(alerts, [](const AlertState& alert) { return alert.mute.has_value(); }))
            return {"Change &Mute...", "Change why and for how long the alert does not warn"};
        return {"&Mute...", "Do not warn for some runs, or until a date"};
    case AlertCommand::Unmute:
        return {"&Unmute", "Warn again"};
    case AlertCommand::Notes:
        return {"&Notes and History...", "Notes on the alert, and how it was changed"};
    case AlertCommand::CopyToFields:
        return {"Copy to &Other Fields...", "Watch the same metric of further fields of the table"};
    case AlertCommand::Remove:
        break;
    }
    return {"&Remove...", "Remove the alert with its notes and history"};
}

} // namespace

AlertCommandInfo alertCommand(AlertCommand command, const AlertTarget& target, int job) {
    const Words words = wordsOf(command, target.alerts);
    std::string_view obstacle;
    if (job == -1)
        obstacle = "No report is open";
    else if (command == AlertCommand::Add)
        obstacle = target.figure ? std::string_view() : "Select a figure that a run computes";
    else
        obstacle = obstacleOf(command, target.alerts, job);
    return {obstacle.empty(), std::string(words.text), std::string(obstacle.empty() ? words.toolTip : obstacle)};
}

} // namespace tavix
