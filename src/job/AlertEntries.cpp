#include "job/AlertEntries.h"

#include "base/NumberText.h"
#include "job/JobChecks.h"
#include "job/JobSchema.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavix::job {

namespace {

using nlohmann::json;

/// The metric of a table itself: its number of records, which every field has as its count.
constexpr std::string_view kRecords = "Records";

struct ConditionKey {
    const char* key;
    AlertComparison comparison;
};
constexpr std::array kConditions{
    ConditionKey{"max", AlertComparison::Greater},   ConditionKey{"min", AlertComparison::Less},
    ConditionKey{"not", AlertComparison::Equal},     ConditionKey{"range", AlertComparison::Outside},
    ConditionKey{"not in", AlertComparison::Inside}, ConditionKey{"change", AlertComparison::ChangedBy}};

template <typename Entries>
std::vector<std::string> namesOf(const Entries& entries) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const auto& entry : entries)
        names.push_back(entry.name);
    return names;
}

} // namespace

void AlertEntries::read(const json& list, const std::string& pointer) {
    for (std::size_t i = 0; i < list.size(); ++i)
        readEntry(list[i], pointerTo(pointer, std::to_string(i)));
}

void AlertEntries::fail(const std::string& pointer, std::string text) const {
    throw DocumentProblem{m_document.valuePositions.at(pointer), std::move(text)};
}

void AlertEntries::readEntry(const json& entry, const std::string& pointer) {
    repository::AlertFacts alert;
    alert.table = m_table.name;
    alert.description = entry.value("description", "");
    alert.rule.level = entry.value("level", "warning") == "error" ? AlertLevel::Error : AlertLevel::Warning;
    readFigure(alert, entry, pointer);
    readCondition(alert.rule, entry, pointer);
    std::string place = pointerTo(pointer, "field");
    if (const auto fields = entry.find("field"); fields != entry.end() && fields->is_array()) {
        for (std::size_t i = 0; i < fields->size(); ++i) {
            alert.field = (*fields)[i].get<std::string>();
            add(alert, pointerTo(place, std::to_string(i)));
        }
        return;
    }
    alert.field = entry.value("field", "");
    if (alert.field.empty())
        place = pointer;
    add(std::move(alert), place);
}

void AlertEntries::add(repository::AlertFacts alert, const std::string& fieldPointer) {
    m_table.alerts.push_back(std::move(alert));
    m_table.alertPlaces.push_back(placeText(m_document, m_file, fieldPointer));
}

void AlertEntries::readFigure(repository::AlertFacts& alert, const json& entry, const std::string& pointer) const {
    const bool isStandard = entry.contains("metric");
    if (!isStandard && entry.contains("field"))
        fail(pointerTo(pointer, "field"), "\"field\" goes with \"metric\"");
    if (entry.contains("figure") && !entry.contains("rule"))
        fail(pointerTo(pointer, "figure"), "\"figure\" goes with \"rule\"");
    if (isStandard) {
        alert.metric = metricOf(entry, pointer);
        return;
    }
    const bool isRule = entry.contains("rule");
    const char* const key = isRule ? "rule" : "custom metric";
    alert.subject = isRule ? AlertSubject::BusinessRule : AlertSubject::CustomMetric;
    alert.rule.ofFailedPercent = entry.value("figure", "rows") == "percent";
    alert.watched = entry.at(key).get<std::string>();
    const std::vector<std::string> known = isRule ? namesOf(m_table.rules) : namesOf(m_table.metrics);
    if (std::find(known.begin(), known.end(), alert.watched) == known.end())
        fail(pointerTo(pointer, key), fmt::format("table \"{}\" has no {} \"{}\"{}", m_table.name, key, alert.watched,
                                                  suggestion(alert.watched, known)));
}

MetricId AlertEntries::metricOf(const json& entry, const std::string& pointer) const {
    const auto name = entry.at("metric").get<std::string>();
    const std::string place = pointerTo(pointer, "metric");
    if (!entry.contains("field")) {
        if (name != kRecords)
            fail(place, fmt::format("the key \"field\" is missing; without it the only metric is {}", kRecords));
        return MetricId::Count;
    }
    std::vector<std::string> known;
    for (const MetricInfo& metric : metricCatalogue()) {
        if (metric.name == name && metric.isFigure())
            return metric.id;
        if (metric.name == name)
            fail(place, fmt::format("the metric \"{}\" is not a number", name));
        if (metric.isFigure())
            known.emplace_back(metric.name);
    }
    fail(place, fmt::format("there is no metric \"{}\"{}", name, suggestion(name, known)));
}

void AlertEntries::readCondition(AlertRule& rule, const json& entry, const std::string& pointer) const {
    // The schema ensures that there is exactly one.
    const auto condition = std::find_if(kConditions.begin(), kConditions.end(),
                                        [&](const ConditionKey& one) { return entry.contains(one.key); });
    const json& value = entry.at(condition->key);
    const std::string place = pointerTo(pointer, condition->key);
    rule.comparison = condition->comparison;
    if (isRange(rule.comparison)) {
        rule.value1 = value.at(0).get<double>();
        rule.value2 = value.at(1).get<double>();
        if (rule.value1 > rule.value2)
            fail(place, "the first number of a range must not be above the second");
    } else if (value.is_string()) {
        std::string text = value.get<std::string>();
        text.erase(text.find_last_not_of(" %") + 1);
        const auto percent = parseNumber(text);
        if (!percent || *percent < 0)
            fail(place, "a change is a number or, in percent, a text such as \"20 %\"");
        rule.comparison = AlertComparison::ChangedByPercent;
        rule.value1 = *percent;
    } else {
        rule.value1 = value.get<double>();
    }
    if (!std::isfinite(rule.value1) || !std::isfinite(rule.value2))
        fail(place, "this number is too large");
    for (const char* key : {"runs", "against"})
        if (entry.contains(key) && !isChange(rule.comparison))
            fail(pointerTo(pointer, key), fmt::format("\"{}\" goes with \"change\"", key));
    rule.runs = entry.value("runs", 1);
    // The schema allows only known words.
    rule.reference = findAlertReference(entry.value("against", "mean")).value_or(AlertReference::Mean);
}

Result<std::vector<repository::AlertFacts>> readAlertEntry(const std::string& text, TableDescription table) {
    const std::size_t start = text.find_first_not_of(" \t\n");
    const bool hasBraces = start != std::string::npos && text[start] == '{';
    const auto problemText = [&](const DocumentProblem& problem) {
        const bool isShifted = !hasBraces && problem.position.line == 1 && problem.position.column > 1;
        return Error{fmt::format("In the alert, at character {}: {}.", problem.position.column - (isShifted ? 1 : 0),
                                 problem.text)};
    };
    const auto parsed = parseYaml(hasBraces ? text : '{' + text + '}');
    if (const auto* problem = std::get_if<DocumentProblem>(&parsed))
        return problemText(*problem);
    const auto& document = std::get<YamlDocument>(parsed);
    if (const auto problem = findAlertProblem(document))
        return problemText(*problem);
    table.alerts.clear();
    table.alertPlaces.clear();
    try {
        AlertEntries(document, "", table).readEntry(document.value, "");
    } catch (const DocumentProblem& problem) {
        return problemText(problem);
    }
    return std::move(table.alerts);
}

Status checkAlertFields(const TableDescription& table, std::span<const std::string> columns) {
    for (std::size_t i = 0; i < table.alerts.size(); ++i) {
        const std::string& field = table.alerts[i].field;
        if (!field.empty() && std::find(columns.begin(), columns.end(), field) == columns.end())
            return Error{fmt::format("{}An alert: the table \"{}\" has no field \"{}\"{}.",
                                     placeAt(table.alertPlaces, i), table.name, field, suggestion(field, columns))};
    }
    return {};
}

std::vector<repository::AlertFacts> alertsOf(const JobDescription& job) {
    std::vector<repository::AlertFacts> alerts;
    for (const TableDescription& table : job.tables)
        alerts.insert(alerts.end(), table.alerts.begin(), table.alerts.end());
    return alerts;
}

} // namespace tavix::job
