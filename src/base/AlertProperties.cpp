#include "base/AlertProperties.h"

#include "base/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

int boundedInteger(std::int64_t value, std::int64_t low, std::int64_t high) {
    return static_cast<int>(std::clamp(value, low, high));
}

} // namespace

AlertProperties alertProperties(const AlertDefinition& definition, std::string_view metricText, int job) {
    const AlertRule& rule = definition.rule;
    const bool isOfRecords = definition.subject == AlertSubject::StandardMetric && definition.field == -1;
    return {{"METRIC", std::string(metricText)},
            {"COMPARE", formatInteger(alertCode(definition.subject, rule))},
            {"VALUE1", formatReal(rule.value1)},
            {"VALUE2", formatReal(rule.value2)},
            {"JOB", formatInteger(job)},
            {"LEVEL", std::string(alertLevelWord(rule.level))},
            {"RUNS", formatInteger(rule.runs)},
            {"RECORDS", isOfRecords ? "1" : "0"},
            {"REFERENCE", std::string(alertReferenceWord(rule.reference))}};
}

std::string_view alertProperty(const AlertProperties& properties, std::string_view name) {
    const auto found = properties.find(name);
    return found == properties.end() ? std::string_view() : std::string_view(found->second);
}

std::optional<AlertRule> readAlertRule(AlertSubject subject, const AlertProperties& properties) {
    constexpr std::int64_t kMostRuns = 100'000;
    AlertRule rule;
    rule.value1 = parseNumber(alertProperty(properties, "VALUE1")).value_or(0);
    rule.value2 = parseNumber(alertProperty(properties, "VALUE2")).value_or(0);
    rule.runs = boundedInteger(parseInteger(alertProperty(properties, "RUNS")).value_or(1), 1, kMostRuns);
    const bool isError = alertProperty(properties, "LEVEL") == alertLevelWord(AlertLevel::Error);
    rule.level = isError ? AlertLevel::Error : AlertLevel::Warning;
    rule.reference = findAlertReference(alertProperty(properties, "REFERENCE")).value_or(AlertReference::Mean);
    const int code = boundedInteger(decimalPrefix(alertProperty(properties, "COMPARE")), -1, kMostRuns);
    return setAlertCode(rule, subject, code) ? std::optional(rule) : std::nullopt;
}

Status checkAlertRule(const AlertRule& rule) {
    if (!std::isfinite(rule.value1) || !std::isfinite(rule.value2))
        return Error{"The limit of an alert must be a number."};
    if (isRange(rule.comparison) && rule.value1 > rule.value2)
        return Error{"The first number of a range must not be above the second."};
    if (isChange(rule.comparison) && rule.value1 < 0)
        return Error{"A change is measured up and down; its limit must not be below 0."};
    if (rule.runs < 1 || rule.runs > kMostAlertRuns)
        return Error{fmt::format("A change is measured against 1 to {} earlier runs.", kMostAlertRuns)};
    return {};
}

} // namespace tavix
