#pragma once

#include "alert/AlertRows.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavix::testing {

/// A list of alerts that come from no repository.
class GivenAlerts final : public AlertRows {
  public:
    explicit GivenAlerts(std::vector<AlertState> alerts, std::map<int, std::string> reports = {})
        : AlertRows({AlertColumn::Description, AlertColumn::Type, AlertColumn::Input, AlertColumn::Path,
                     AlertColumn::State, AlertColumn::Level, AlertColumn::Figure, AlertColumn::ComparedWith,
                     AlertColumn::Raised, AlertColumn::Condition, AlertColumn::DefinedBy, AlertColumn::Report},
                    "", std::locale::classic()) {
        ShowAlerts(std::move(alerts), std::move(reports));
    }
};

/// An alert on a metric of the field Sales.north.public.orders.price with its rule's sentence; `figure` is judged by
/// the rule.
inline AlertState priceAlert(MetricId metric, const AlertRule& rule, std::optional<double> figure) {
    AlertState alert;
    alert.dataSource = "Sales";
    alert.catalog = "north";
    alert.schema = "public";
    alert.tableName = alert.table = "orders";
    alert.typeCode = "SM";
    alert.input = "price";
    alert.watchedId = static_cast<int>(metric);
    alert.metric = findMetric(alert.watchedId)->name;
    alert.rule = rule;
    alert.sentence = alert.description = alertSentence(alert.subject, rule, alert.metric, alert.input);
    alert.figure = figure;
    alert.verdict = checkAlert(rule, figure, 1, {});
    alert.raisedRuns = alert.verdict.state == AlertVerdict::State::Raised ? 1 : 0;
    return alert;
}

} // namespace tavix::testing
