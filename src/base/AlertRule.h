#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The rule of an alert: a threshold on a metric of a run.
namespace tavix {

enum class AlertSubject {
    StandardMetric, ///< of a field
    CustomMetric,
    BusinessRule, ///< the rows that violate it, or their percentage
};

/// SM, CM or BR, as the repository marks alerts.
[[nodiscard]] std::string_view alertTypeCode(AlertSubject subject);
/// CM and BR in any case; anything else is a standard metric.
[[nodiscard]] AlertSubject alertSubjectOf(std::string_view typeCode);
/// "Standard Metric", "Custom Metric" or "Business Rule".
[[nodiscard]] std::string_view alertTypeWord(AlertSubject subject);

/// The condition under which an alert is raised. alertCode() gives its number in the repository.
enum class AlertComparison {
    Greater = 0,
    Less = 1,
    Equal = 2,
    Outside = 3, ///< of the range from value1 to value2, which includes its ends
    Inside = 4,
    ChangedBy = 5,        ///< by more than value1, up or down
    ChangedByPercent = 6, ///< by more than value1 percent of the reference
};

[[nodiscard]] bool isChange(AlertComparison comparison);
[[nodiscard]] bool isRange(AlertComparison comparison);

enum class AlertLevel { Warning, Error };

[[nodiscard]] std::string_view alertLevelWord(AlertLevel level);

struct AlertRule {
    AlertComparison comparison = AlertComparison::Greater;
    bool ofFailedPercent = false; ///< of a business rule: its percentage, else its number of rows
    double value1 = 0;
    double value2 = 0; ///< of a range
    int runs = 1;      ///< a change is measured against the mean of so many earlier runs
    AlertLevel level = AlertLevel::Warning;

    bool operator==(const AlertRule&) const = default;
};

/// The number of a comparison in the repository. A business rule has 0 to 4 for its number of failed rows, 5 to 9 for
/// their percentage; 10 and 11 for changes of the number, 12 and 13 for changes of the percentage.
[[nodiscard]] int alertCode(AlertSubject subject, const AlertRule& rule);
/// Sets comparison and ofFailedPercent; false for an unknown number.
[[nodiscard]] bool setAlertCode(AlertRule& rule, AlertSubject subject, int code);

/// "Null Count for field price is greater than 0": the condition that raises the alert. `metric` is the name of the
/// standard metric or of the custom metric's value; `input` is the name of the field, custom metric or business rule.
[[nodiscard]] std::string alertSentence(AlertSubject subject, const AlertRule& rule, std::string_view metric,
                                        std::string_view input);

/// "Number of records is less than 1000": for an alert on the records of a table, which is stored as one on the Count
/// of a field.
[[nodiscard]] std::string recordsAlertSentence(const AlertRule& rule);

struct AlertVerdict {
    enum class State {
        Quiet,
        Raised,
        Unknown, ///< the run lacks the metric, or a change has no reference
    };
    State state = State::Unknown;
    std::optional<double> reference = {}; ///< what a change is measured against

    bool operator==(const AlertVerdict&) const = default;
};

/// `earlier` are the values of earlier runs, the latest first, without those of runs that lack the metric.
[[nodiscard]] AlertVerdict checkAlert(const AlertRule& rule, std::optional<double> figure,
                                      std::span<const double> earlier);

} // namespace tavix
