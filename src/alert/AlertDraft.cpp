#include "alert/AlertDraft.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "base/NumberText.h"
#include "report/AlertTexts.h"
#include "report/CheckedCursor.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tavix {

namespace {

using ComparisonChoice = AlertDraft::ComparisonChoice;
constexpr std::array kComparisons{
    ComparisonChoice{AlertComparison::Greater, "is greater than"},
    ComparisonChoice{AlertComparison::Less, "is less than"},
    ComparisonChoice{AlertComparison::Equal, "is equal to"},
    ComparisonChoice{AlertComparison::Outside, "is outside the range"},
    ComparisonChoice{AlertComparison::Inside, "is inside the range"},
    ComparisonChoice{AlertComparison::ChangedBy, "changes by more than"},
    ComparisonChoice{AlertComparison::ChangedByPercent, "changes by more than, in percent"}};

constexpr std::string_view kRecords = "Number of records";
constexpr std::array<std::string_view, 2> kRuleFigures{"Failed row count", "Percentage of failed rows"};
constexpr std::size_t kLongestLimit = 60;
constexpr std::string_view kBlanks = " \t";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The number without the commas between its groups of three digits; nothing if commas stand elsewhere.
std::optional<std::string> withoutGroups(std::string_view text) {
    const std::size_t first = text.find(',');
    if (first == std::string_view::npos)
        return std::string(text);
    const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
    const std::size_t whole = std::min(text.find_first_of(".eE"), text.size());
    std::size_t commas = 0;
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ',')
            plain += text[i];
        else if (i > whole || (whole - i) % 4 != 0)
            return std::nullopt;
        else
            ++commas;
    }
    if (first == sign || first > sign + 3 || whole - first != 4 * commas)
        return std::nullopt;
    return plain;
}

/// A number as people write it: blanks around it, commas between groups of digits and a percent sign are accepted.
std::optional<double> limitOf(std::string_view text) {
    text = trimmed(text);
    if (text.ends_with('%'))
        text = trimmed(text.substr(0, text.size() - 1));
    if (text.empty() || text.size() > kLongestLimit)
        return std::nullopt;
    const std::optional<std::string> plain = withoutGroups(text);
    return plain ? parseNumber(*plain) : std::nullopt;
}

Status checkLimit(const std::string& text, std::string_view missing) {
    if (trimmed(text).empty())
        return Error{std::string(missing)};
    if (!limitOf(text))
        return Error{"The limit is not a number. Write it like 1250, 0.5 or 1e6."};
    return {};
}

std::vector<MetricId> figureMetrics() {
    std::vector<MetricId> metrics;
    for (const MetricInfo& metric : metricCatalogue())
        if (metric.isFigure())
            metrics.push_back(metric.id);
    return metrics;
}

AgainstChoice againstOf(const AlertRule& rule) {
    switch (rule.reference) {
    case AlertReference::Mean:
        break;
    case AlertReference::Median:
        return AgainstChoice::Median;
    case AlertReference::SameWeekday:
        return AgainstChoice::SameWeekday;
    }
    return rule.runs <= 1 ? AgainstChoice::RunBefore : AgainstChoice::Mean;
}

std::vector<AlertDraft::Input> readInputs(PrViewer& viewer, int table) {
    std::vector<AlertDraft::Input> inputs{{AlertSubject::StandardMetric, -1, {}, {}}};
    for (NamedField& field : readFieldNames(viewer, table))
        inputs.push_back({AlertSubject::StandardMetric, field.id, std::move(field.name), {}});
    const ProfileCursorHandle metrics = checked(viewer, viewer.getCustomMetrics(table));
    while (metrics->next())
        inputs.push_back({AlertSubject::CustomMetric, metrics->getColumnInt(layout::CustomMetricId),
                          textAt(*metrics, layout::CustomMetricName),
                          textAt(*metrics, layout::CustomMetricOutputName)});
    const ProfileCursorHandle rules = checked(viewer, viewer.getBusinessRules(table));
    while (rules->next())
        inputs.push_back(
            {AlertSubject::BusinessRule, rules->getColumnInt(layout::RuleId), textAt(*rules, layout::RuleName), {}});
    return inputs;
}

std::string conditionText(const LimitProposal& proposal, const auto& limitText) {
    // The unit of the limit says which change is meant.
    const AlertComparison shown = isChange(proposal.comparison) ? AlertComparison::ChangedBy : proposal.comparison;
    const auto* const found = std::ranges::find(kComparisons, shown, &ComparisonChoice::comparison);
    const std::string first = limitText(proposal.value1);
    return isRange(proposal.comparison) ? fmt::format("{} {} to {}", found->text, first, limitText(proposal.value2))
                                        : fmt::format("{} {}", found->text, first);
}

} // namespace

std::string AlertDraft::Input::Label() const {
    switch (subject) {
    case AlertSubject::CustomMetric:
        return "Custom metric " + name;
    case AlertSubject::BusinessRule:
        return "Business rule " + name;
    case AlertSubject::StandardMetric:
        break;
    }
    return id == -1 ? "Records of the table" : "Field " + name;
}

std::span<const AlertDraft::ComparisonChoice> AlertDraft::Comparisons() {
    return kComparisons;
}

Result<AlertDraft> AlertDraft::MakeNew(PrViewer& viewer, const AlertDefinition& figure) try {
    AlertDraft draft;
    draft.m_table = figure.table;
    draft.m_inputs = readInputs(viewer, figure.table);
    const int id = figure.subject == AlertSubject::StandardMetric ? figure.field : figure.watched;
    const auto found = std::ranges::find_if(
        draft.m_inputs, [&](const Input& input) { return input.subject == figure.subject && input.id == id; });
    if (found == draft.m_inputs.end())
        return Error{"The run that is shown does not have this figure."};
    draft.m_input = static_cast<std::size_t>(found - draft.m_inputs.begin());
    draft.m_metric = figure.metric;
    AlertRule rule;
    rule.ofFailedPercent = figure.rule.ofFailedPercent && figure.subject == AlertSubject::BusinessRule;
    draft.Start(rule, {});
    draft.ReadHistory(viewer);
    return draft;
} catch (const GenException& failure) {
    return Error{failure.getText().str()};
}

AlertDraft AlertDraft::Edit(PrViewer& viewer, const AlertState& alert) {
    AlertDraft draft;
    const AlertDefinition stored = alert.definition();
    draft.m_table = stored.table;
    draft.m_isFixed = true;
    const bool isOfField = stored.subject == AlertSubject::StandardMetric;
    draft.m_inputs.push_back({stored.subject, isOfField ? stored.field : stored.watched,
                              alert.isOfRecords ? std::string() : alert.input,
                              stored.subject == AlertSubject::CustomMetric ? alert.metric : std::string()});
    draft.m_metric = stored.metric;
    draft.Start(stored.rule, stored.description);
    if (alert.rule) {
        draft.m_value1 = formatReal(alert.rule->value1);
        draft.m_value2 = isRange(alert.rule->comparison) ? formatReal(alert.rule->value2) : std::string();
    }
    draft.m_kept = draft.Now();
    draft.ReadHistory(viewer);
    return draft;
}

void AlertDraft::Start(const AlertRule& rule, std::string description) {
    m_rule = rule;
    // The limits are kept as texts alone.
    m_rule.value1 = m_rule.value2 = 0;
    m_rule.runs = std::clamp(rule.runs, 1, kMostRuns);
    m_against = againstOf(m_rule);
    m_description = std::move(description);
    ShowFigureOfRule();
    m_kept = Now();
}

void AlertDraft::ShowFigureOfRule() {
    m_figure = 0;
    if (m_isFixed)
        return;
    if (Chosen().subject == AlertSubject::BusinessRule) {
        m_figure = m_rule.ofFailedPercent ? 1 : 0;
    } else if (Chosen().subject == AlertSubject::StandardMetric && Chosen().id != -1) {
        const std::vector<MetricId> metrics = figureMetrics();
        const auto found = std::ranges::find(metrics, m_metric);
        m_figure = found == metrics.end() ? 0 : static_cast<std::size_t>(found - metrics.begin());
        m_metric = metrics.at(m_figure);
    }
}

std::vector<std::string> AlertDraft::GetFigures() const {
    const Input& input = Chosen();
    if (input.subject == AlertSubject::CustomMetric)
        return {input.output};
    if (input.subject == AlertSubject::BusinessRule) {
        if (m_isFixed)
            return {std::string(kRuleFigures[m_rule.ofFailedPercent ? 1 : 0])};
        return {kRuleFigures.begin(), kRuleFigures.end()};
    }
    if (input.id == -1)
        return {std::string(kRecords)};
    const auto nameOf = [](MetricId metric) {
        const MetricInfo* const found = findMetric(static_cast<int>(metric));
        return std::string(found ? found->name : std::string_view());
    };
    if (m_isFixed)
        return {nameOf(m_metric)};
    std::vector<std::string> names;
    for (const MetricId metric : figureMetrics())
        names.push_back(nameOf(metric));
    return names;
}

void AlertDraft::ChooseInput(PrViewer& viewer, std::size_t input) {
    if (input == m_input || input >= m_inputs.size())
        return;
    m_input = input;
    m_rule.ofFailedPercent = m_rule.ofFailedPercent && Chosen().subject == AlertSubject::BusinessRule;
    ShowFigureOfRule();
    ReadHistory(viewer);
}

void AlertDraft::ChooseFigure(PrViewer& viewer, std::size_t figure) {
    if (figure == m_figure || figure >= GetFigures().size())
        return;
    m_figure = figure;
    if (Chosen().subject == AlertSubject::BusinessRule)
        m_rule.ofFailedPercent = figure == 1;
    else
        m_metric = figureMetrics().at(figure);
    ReadHistory(viewer);
}

bool AlertDraft::IsPercent() const {
    if (Chosen().subject == AlertSubject::BusinessRule)
        return m_rule.ofFailedPercent;
    const MetricInfo* const metric = findMetric(static_cast<int>(m_metric));
    return Chosen().subject == AlertSubject::StandardMetric && Chosen().id != -1 && metric &&
           metric->value == MetricValue::Percent;
}

std::string_view AlertDraft::GetUnit() const {
    return IsPercent() || m_rule.comparison == AlertComparison::ChangedByPercent ? "%" : "";
}

void AlertDraft::SetComparison(AlertComparison comparison) {
    if (comparison == m_rule.comparison)
        return;
    m_rule.comparison = comparison;
    Propose();
    Judge();
}

void AlertDraft::SetValue1(std::string text) {
    m_value1 = std::move(text);
    Judge();
}

void AlertDraft::SetValue2(std::string text) {
    m_value2 = std::move(text);
    Judge();
}

void AlertDraft::SetAgainst(AgainstChoice against) {
    m_against = against;
    m_rule.reference = against == AgainstChoice::Median        ? AlertReference::Median
                       : against == AgainstChoice::SameWeekday ? AlertReference::SameWeekday
                                                               : AlertReference::Mean;
    if (against == AgainstChoice::RunBefore)
        m_rule.runs = 1;
    Propose();
    Judge();
}

void AlertDraft::SetRuns(int runs) {
    m_rule.runs = std::clamp(runs, 1, kMostRuns);
    Propose();
    Judge();
}

Status AlertDraft::Check() const {
    const bool isOfRange = isRange(m_rule.comparison);
    if (Status first = checkLimit(m_value1, isOfRange ? "Enter where the range begins." : "Enter the limit."); !first)
        return first;
    if (isChange(m_rule.comparison) && *limitOf(m_value1) < 0)
        return Error{"A change is measured up and down alike: enter a limit that is not below 0."};
    if (!isOfRange)
        return {};
    if (Status second = checkLimit(m_value2, "Enter where the range ends."); !second)
        return second;
    if (*limitOf(m_value1) > *limitOf(m_value2))
        return Error{"The range begins above its end."};
    return {};
}

std::optional<AlertRule> AlertDraft::GetRule() const {
    if (!Check())
        return std::nullopt;
    AlertRule rule = m_rule;
    rule.value1 = *limitOf(m_value1);
    rule.value2 = isRange(rule.comparison) ? *limitOf(m_value2) : 0;
    if (!isChange(rule.comparison)) {
        rule.runs = 1;
        rule.reference = AlertReference::Mean;
    }
    return rule;
}

std::string AlertDraft::GetSentence() const {
    const std::optional<AlertRule> rule = GetRule();
    if (!rule)
        return {};
    const Input& input = Chosen();
    if (input.subject == AlertSubject::StandardMetric && input.id == -1)
        return recordsAlertSentence(*rule);
    return alertSentence(input.subject, *rule, GetFigures().at(m_figure), input.name);
}

AlertDefinition AlertDraft::GetDefinition() const {
    AlertDefinition definition;
    definition.table = m_table;
    definition.subject = Chosen().subject;
    if (definition.subject == AlertSubject::StandardMetric) {
        definition.field = Chosen().id;
        definition.metric = Chosen().id == -1 ? MetricId::Count : m_metric;
    } else {
        definition.watched = Chosen().id;
    }
    definition.rule = GetRule().value_or(m_rule);
    const std::string_view description = trimmed(m_description);
    definition.description = description == GetSentence() ? std::string_view() : description;
    return definition;
}

bool AlertDraft::IsChanged() const {
    return Now() != m_kept;
}

void AlertDraft::ReadHistory(PrViewer& viewer) {
    m_failure.clear();
    try {
        m_runs = readWatchedFigures(viewer, GetDefinition());
    } catch (const GenException& failure) {
        m_runs.clear();
        m_failure = failure.getText().str();
    }
    Propose();
    Judge();
}

void AlertDraft::Propose() {
    m_proposals = proposeLimits(m_rule, m_runs);
}

void AlertDraft::Judge() {
    if (const std::optional<AlertRule> rule = GetRule())
        m_test = backTest(*rule, m_runs);
    else
        m_test = {m_runs, 0, 0};
}

std::string AlertDraft::GetBackTestText() const {
    if (!m_failure.empty())
        return "The stored runs cannot be read: " + m_failure;
    const auto figures = std::ranges::count_if(m_runs, [](const BackTestRun& run) { return run.figure.has_value(); });
    if (figures == 0)
        return "No stored run has this figure as a number, so the alert cannot be tried.";
    if (const Status checked = Check(); !checked)
        return trimmed(m_value1).empty() ? fmt::format("Enter a limit to see in which of {} it would have been raised.",
                                                       countOf(figures, "run"))
                                         : checked.error().text;
    if (m_test.judged == 0)
        return "No stored run can be judged: none has an earlier run to compare with.";
    const auto unjudged = static_cast<std::int64_t>(m_runs.size()) - m_test.judged;
    return fmt::format("It would have been raised in {} of {}.{}", m_test.raised, countOf(m_test.judged, "run"),
                       unjudged == 0   ? ""
                       : unjudged == 1 ? " 1 further run cannot be judged."
                                       : fmt::format(" {} further runs cannot be judged.", unjudged));
}

std::string AlertDraft::GetFigureText() const {
    if (m_runs.empty() || !m_runs.back().figure)
        return {};
    const double figure = *m_runs.back().figure;
    return alertNumberText(figure, IsPercent());
}

std::string AlertDraft::LimitText(double value) const {
    return formatReal(value);
}

std::string AlertDraft::ProposalText(std::size_t proposal) const {
    const LimitProposal& one = m_proposals.at(proposal);
    const bool isPercent = IsPercent() || one.comparison == AlertComparison::ChangedByPercent;
    const auto limit = [isPercent](double value) { return alertLimitText(value, isPercent); };
    return fmt::format("{}: raised in {} ({})", conditionText(one, limit),
                       one.raised == 0 ? "no run" : countOf(one.raised, "run"), one.reason);
}

void AlertDraft::Apply(std::size_t proposal) {
    const LimitProposal one = m_proposals.at(proposal);
    m_rule.comparison = one.comparison;
    m_value1 = LimitText(one.value1);
    m_value2 = isRange(one.comparison) ? LimitText(one.value2) : std::string();
    Judge();
}

} // namespace tavix
