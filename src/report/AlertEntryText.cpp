#include "report/AlertEntryText.h"

#include "base/LibraryDate.h"
#include "base/NumberText.h"
#include "report/YamlText.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tavix {

namespace {

std::string comparisonText(const AlertRule& rule) {
    const std::string value = formatReal(rule.value1);
    switch (rule.comparison) {
    case AlertComparison::Greater:
        return "max: " + value;
    case AlertComparison::Less:
        return "min: " + value;
    case AlertComparison::Equal:
        return "not: " + value;
    case AlertComparison::Outside:
        return fmt::format("range: [{}, {}]", value, formatReal(rule.value2));
    case AlertComparison::Inside:
        return fmt::format("not in: [{}, {}]", value, formatReal(rule.value2));
    case AlertComparison::ChangedBy:
        return "change: " + value;
    case AlertComparison::ChangedByPercent:
        return fmt::format("change: {} %", value);
    }
    return "max: " + value;
}

/// Who made an alert and when, as a comment.
std::string originComment(const AlertState& alert) {
    if (!alert.isOfUser)
        return {};
    const DateParts made = decompose(alert.created);
    return fmt::format("      # Made by {}, {:04}-{:02}-{:02}\n", yamlComment(alert.author), made.year, made.month,
                       made.day);
}

} // namespace

std::string alertConditionText(const AlertRule& rule) {
    std::string text = comparisonText(rule);
    if (isChange(rule.comparison) && rule.runs > 1)
        text += fmt::format(", runs: {}", rule.runs);
    if (isChange(rule.comparison) && rule.reference != AlertReference::Mean)
        text += fmt::format(", against: {}", alertReferenceWord(rule.reference));
    return text;
}

std::string alertEntryText(const AlertState& alert) {
    std::string entry;
    switch (alert.subject) {
    case AlertSubject::StandardMetric:
        entry = alert.isOfRecords ? "metric: Records"
                                  : fmt::format("field: {}, metric: {}", yamlScalar(alert.input), alert.metric);
        break;
    case AlertSubject::CustomMetric:
        entry = "custom metric: " + yamlScalar(alert.input);
        break;
    case AlertSubject::BusinessRule:
        entry = "rule: " + yamlScalar(alert.input);
        if (alert.rule->ofFailedPercent)
            entry += ", figure: percent";
        break;
    }
    entry += ", " + alertConditionText(*alert.rule);
    if (alert.rule->level == AlertLevel::Error)
        entry += ", level: error";
    if (alert.isDescribed() && !alert.description.empty())
        entry += ", description: " + yamlScalar(alert.description);
    return entry;
}

std::string alertEntriesText(std::span<const AlertState> alerts) {
    std::vector<std::pair<std::string, std::string>> tables; // in the order of their first alerts
    for (const AlertState& alert : alerts) {
        if (!alert.rule)
            continue;
        auto table =
            std::find_if(tables.begin(), tables.end(), [&](const auto& one) { return one.first == alert.table; });
        if (table == tables.end())
            table = tables.insert(tables.end(), {alert.table, {}});
        table->second += originComment(alert) + fmt::format("      - {{{}}}\n", alertEntryText(alert));
    }
    std::string text = "tables:\n";
    for (const auto& [name, entries] : tables)
        text += fmt::format("  - name: {}\n    alerts:\n{}", yamlScalar(name), entries);
    return text;
}

} // namespace tavix
