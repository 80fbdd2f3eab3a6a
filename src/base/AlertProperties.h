#pragma once

#include "base/AlertDefinition.h"
#include "base/Result.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The properties by which the repository stores an alert's rule, as texts by name: METRIC (the number of a standard
/// metric, the name of a custom metric's value), COMPARE (see alertCode()), VALUE1, VALUE2, JOB, LEVEL, RUNS, RECORDS
/// ("1": the records of the table) and REFERENCE.
namespace tavix {

using AlertProperties = std::map<std::string, std::string, std::less<>>;

/// Earlier runs that a change may be measured against.
inline constexpr int kMostAlertRuns = 1000;

/// `metricText` is the value of METRIC.
[[nodiscard]] AlertProperties alertProperties(const AlertDefinition& definition, std::string_view metricText, int job);

/// Missing properties, and those that are not what they should be, have their defaults: 0 for numbers, 1 for the runs,
/// a warning, the mean. Nothing if no comparison has the number.
[[nodiscard]] std::optional<AlertRule> readAlertRule(AlertSubject subject, const AlertProperties& properties);
/// The value; empty if there is none.
[[nodiscard]] std::string_view alertProperty(const AlertProperties& properties, std::string_view name);

/// Whether the numbers make sense for a user; the error is a sentence.
[[nodiscard]] Status checkAlertRule(const AlertRule& rule);

} // namespace tavix
