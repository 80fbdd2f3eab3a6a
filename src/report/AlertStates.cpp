#include "report/AlertStates.h"

#include "report/AlertStateReader.h"

#include <algorithm>
#include <array>

namespace tavix {

std::string_view alertShownWord(AlertShown shown) {
    constexpr std::array<std::string_view, 4> kWords{"raised", "cannot be judged", "muted", "quiet"};
    return kWords[static_cast<std::size_t>(shown)];
}

AlertShown AlertState::shown() const {
    if (mute)
        return AlertShown::Muted;
    if (verdict.state == AlertVerdict::State::Unknown)
        return AlertShown::CannotBeJudged;
    return verdict.state == AlertVerdict::State::Raised ? AlertShown::Raised : AlertShown::Quiet;
}

AlertDefinition AlertState::definition() const {
    AlertDefinition definition;
    definition.table = tableId;
    definition.subject = subject;
    if (subject == AlertSubject::StandardMetric) {
        definition.field = isOfRecords ? -1 : fieldId;
        definition.metric = static_cast<MetricId>(watchedId);
    } else {
        definition.watched = watchedId;
    }
    definition.rule = rule.value_or(AlertRule{});
    definition.description = isDescribed() ? description : "";
    return definition;
}

void orderAlerts(std::vector<AlertState>& alerts) {
    const auto rank = [](const AlertState& alert) {
        return alert.isRaisedAt(AlertLevel::Error) ? -1 : static_cast<int>(alert.shown());
    };
    std::stable_sort(alerts.begin(), alerts.end(),
                     [&](const AlertState& left, const AlertState& right) { return rank(left) < rank(right); });
}

void AlertCounts::add(const AlertState& alert) {
    switch (alert.shown()) {
    case AlertShown::Raised:
        ++(alert.isRaisedAt(AlertLevel::Error) ? errors : warnings);
        break;
    case AlertShown::CannotBeJudged:
        ++unjudged;
        break;
    case AlertShown::Muted:
        ++muted;
        break;
    case AlertShown::Quiet:
        ++quiet;
        break;
    }
}

AlertCounts countAlerts(const std::vector<AlertState>& alerts) {
    AlertCounts counts;
    for (const AlertState& alert : alerts)
        counts.add(alert);
    return counts;
}

std::string AlertState::condition() const {
    return fits ? sentence + std::string(kOverFits) : sentence;
}

std::vector<AlertState> readAlertStates(PrViewer& viewer, int job) {
    std::vector<AlertState> states;
    AlertStateReader(viewer, states).read(job);
    return states;
}

std::vector<AlertState> readAllAlertStates(PrViewer& viewer) {
    std::vector<AlertState> states;
    readAllAlertStates(viewer, states);
    return states;
}

void readAllAlertStates(PrViewer& viewer, std::vector<AlertState>& states) {
    states.clear();
    AlertStateReader(viewer, states).read({});
}

} // namespace tavix
