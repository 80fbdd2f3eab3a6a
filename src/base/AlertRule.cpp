#include "base/AlertRule.h"

#include "base/Ascii.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace tavix {

namespace {

/// The numbers of a comparison in the repository.
struct ComparisonCodes {
    AlertComparison comparison;
    int metric;        ///< of a standard or custom metric
    int failedRows;    ///< of a business rule
    int failedPercent; ///< of a business rule
};
constexpr std::array kComparisons{ComparisonCodes{AlertComparison::Greater, 0, 0, 5},
                                  ComparisonCodes{AlertComparison::Less, 1, 1, 6},
                                  ComparisonCodes{AlertComparison::Equal, 2, 2, 7},
                                  ComparisonCodes{AlertComparison::Outside, 3, 3, 8},
                                  ComparisonCodes{AlertComparison::Inside, 4, 4, 9},
                                  ComparisonCodes{AlertComparison::ChangedBy, 5, 10, 12},
                                  ComparisonCodes{AlertComparison::ChangedByPercent, 6, 11, 13}};

struct SubjectWords {
    AlertSubject subject;
    std::string_view code;
    std::string_view word;
};
constexpr std::array kSubjects{SubjectWords{AlertSubject::StandardMetric, "SM", "Standard Metric"},
                               SubjectWords{AlertSubject::CustomMetric, "CM", "Custom Metric"},
                               SubjectWords{AlertSubject::BusinessRule, "BR", "Business Rule"}};

const SubjectWords& wordsOf(AlertSubject subject) {
    return kSubjects[static_cast<std::size_t>(subject)];
}

std::string thresholdText(double value) {
    return fmt::format("{:.15g}", value);
}

std::string conditionText(const AlertRule& rule) {
    const std::string first = thresholdText(rule.value1);
    switch (rule.comparison) {
    case AlertComparison::Greater:
        return "is greater than " + first;
    case AlertComparison::Less:
        return "is less than " + first;
    case AlertComparison::Equal:
        return "is equal to " + first;
    case AlertComparison::Outside:
        return fmt::format("is outside the range {} to {}", first, thresholdText(rule.value2));
    case AlertComparison::Inside:
        return fmt::format("is inside the range {} to {}", first, thresholdText(rule.value2));
    case AlertComparison::ChangedBy:
        return "has changed by more than " + first;
    case AlertComparison::ChangedByPercent:
        break;
    }
    return fmt::format("has changed by more than {}%", first);
}

constexpr std::array<std::string_view, 3> kReferenceWords{"mean", "median", "weekday"};

/// Nothing for the run before, with which a change is compared unless the rule says otherwise.
std::string referenceText(const AlertRule& rule) {
    if (!isChange(rule.comparison) || (rule.runs <= 1 && rule.reference != AlertReference::SameWeekday))
        return {};
    const std::string runs = rule.runs == 1 ? "the last run" : fmt::format("{} runs", rule.runs);
    switch (rule.reference) {
    case AlertReference::Mean:
        return " against the mean of " + runs;
    case AlertReference::Median:
        return " against the median of " + runs;
    case AlertReference::SameWeekday:
        break;
    }
    return fmt::format(" against {}{} of the same weekday", rule.runs == 1 ? "" : "the mean of ", runs);
}

/// The earlier figures that make the reference, the latest first.
std::vector<double> referenceFigures(const AlertRule& rule, int weekday, std::span<const RunFigure> earlier) {
    const auto wanted = static_cast<std::size_t>(std::max(1, rule.runs));
    std::vector<double> figures;
    for (const RunFigure& one : earlier) {
        if (figures.size() == wanted)
            break;
        if (rule.reference != AlertReference::SameWeekday || one.weekday == weekday)
            figures.push_back(one.value);
    }
    return figures;
}

double medianOf(std::vector<double> figures) {
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    if (figures.size() % 2 == 1)
        return *middle;
    return std::midpoint(*std::max_element(figures.begin(), middle), *middle);
}

double meanOf(const std::vector<double>& figures) {
    double sum = 0;
    for (const double one : figures)
        sum += one;
    return sum / static_cast<double>(figures.size());
}

bool isBeyond(const AlertRule& rule, double figure, double reference) {
    const bool isInside = figure >= rule.value1 && figure <= rule.value2;
    switch (rule.comparison) {
    case AlertComparison::Greater:
        return figure > rule.value1;
    case AlertComparison::Less:
        return figure < rule.value1;
    case AlertComparison::Equal:
        return figure == rule.value1;
    case AlertComparison::Outside:
        return !isInside;
    case AlertComparison::Inside:
        return isInside;
    case AlertComparison::ChangedBy:
        return std::abs(figure - reference) > rule.value1;
    case AlertComparison::ChangedByPercent:
        break;
    }
    return std::abs(figure - reference) * 100 > rule.value1 * std::abs(reference);
}

} // namespace

std::string_view alertTypeCode(AlertSubject subject) {
    return wordsOf(subject).code;
}

std::optional<AlertSubject> findAlertSubject(std::string_view typeCode) {
    const auto* const found = std::find_if(kSubjects.begin(), kSubjects.end(),
                                           [typeCode](const SubjectWords& words) { return words.code == typeCode; });
    return found == kSubjects.end() ? std::nullopt : std::optional(found->subject);
}

AlertSubject alertSubjectOf(std::string_view typeCode) {
    for (const SubjectWords& words : kSubjects)
        if (equalsIgnoringAsciiCase(typeCode, words.code))
            return words.subject;
    return AlertSubject::StandardMetric;
}

std::string_view alertTypeWord(AlertSubject subject) {
    return wordsOf(subject).word;
}

bool isChange(AlertComparison comparison) {
    return comparison == AlertComparison::ChangedBy || comparison == AlertComparison::ChangedByPercent;
}

bool isRange(AlertComparison comparison) {
    return comparison == AlertComparison::Outside || comparison == AlertComparison::Inside;
}

std::string_view alertLevelWord(AlertLevel level) {
    return level == AlertLevel::Error ? "error" : "warning";
}

int alertCode(AlertSubject subject, const AlertRule& rule) {
    const ComparisonCodes& codes = kComparisons[static_cast<std::size_t>(rule.comparison)];
    if (subject != AlertSubject::BusinessRule)
        return codes.metric;
    return rule.ofFailedPercent ? codes.failedPercent : codes.failedRows;
}

bool setAlertCode(AlertRule& rule, AlertSubject subject, int code) {
    for (const bool ofFailedPercent : {false, true})
        for (const ComparisonCodes& codes : kComparisons) {
            AlertRule candidate = rule;
            candidate.comparison = codes.comparison;
            candidate.ofFailedPercent = ofFailedPercent;
            if (alertCode(subject, candidate) != code)
                continue;
            rule = candidate;
            return true;
        }
    return false;
}

std::string alertSentence(AlertSubject subject, const AlertRule& rule, std::string_view metric,
                          std::string_view input) {
    const std::string condition = conditionText(rule) + referenceText(rule);
    switch (subject) {
    case AlertSubject::CustomMetric:
        return fmt::format("{} for custom metric {} {}", metric, input, condition);
    case AlertSubject::BusinessRule:
        return fmt::format("{} for business rule {} {}",
                           rule.ofFailedPercent ? "Percentage of failed rows" : "Failed row count", input, condition);
    case AlertSubject::StandardMetric:
        break;
    }
    return fmt::format("{} for field {} {}", metric, input, condition);
}

std::string recordsAlertSentence(const AlertRule& rule) {
    return "Number of records " + conditionText(rule) + referenceText(rule);
}

std::string_view alertReferenceWord(AlertReference reference) {
    return kReferenceWords[static_cast<std::size_t>(reference)];
}

std::optional<AlertReference> findAlertReference(std::string_view word) {
    const auto* const found = std::find(kReferenceWords.begin(), kReferenceWords.end(), word);
    if (found == kReferenceWords.end())
        return std::nullopt;
    return static_cast<AlertReference>(found - kReferenceWords.begin());
}

AlertVerdict checkAlert(const AlertRule& rule, std::optional<double> figure, int weekday,
                        std::span<const RunFigure> earlier) {
    AlertVerdict verdict;
    if (isChange(rule.comparison)) {
        std::vector<double> figures = referenceFigures(rule, weekday, earlier);
        if (figures.empty())
            return verdict;
        verdict.reference = rule.reference == AlertReference::Median ? medianOf(std::move(figures)) : meanOf(figures);
    }
    if (!figure)
        return verdict;
    verdict.state = isBeyond(rule, *figure, verdict.reference.value_or(0)) ? AlertVerdict::State::Raised
                                                                           : AlertVerdict::State::Quiet;
    return verdict;
}

bool needsEarlierRuns(const AlertRule& rule, int weekday, std::span<const RunFigure> earlier) {
    return isChange(rule.comparison) &&
           referenceFigures(rule, weekday, earlier).size() < static_cast<std::size_t>(std::max(1, rule.runs));
}

} // namespace tavix
