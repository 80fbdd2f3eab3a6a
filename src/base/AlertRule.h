#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// What raises an alert: a threshold on a figure of a run.
namespace tavix {

enum class AlertSubject {
    StandardMetric, ///< of a field
    CustomMetric,
    BusinessRule, ///< the rows that violate it, or their percentage
};

/// SM, CM or BR, as alerts are marked in the repository.
[[nodiscard]] std::string_view alertTypeCode(AlertSubject subject);
/// CM and BR in any case; anything else is a standard metric.
[[nodiscard]] AlertSubject alertSubjectOf(std::string_view typeCode);
/// "Standard Metric", "Custom Metric" or "Business Rule".
[[nodiscard]] std::string_view alertTypeWord(AlertSubject subject);

/// When the alert is raised. Of an alert on the percentage of a rule's rows the number in the repository is another,
/// see alertCode().
enum class AlertComparison {
    Greater = 0,
    Less = 1,
    Equal = 2,
    Outside = 3, ///< of the range from value1 to value2; its ends lie inside
    Inside = 4,
    ChangedBy = 5,        ///< by more than value1, up or down
    ChangedByPercent = 6, ///< by more than value1 percent of what it was
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
    int runs = 1;      ///< a change is one against the mean of so many runs before
    AlertLevel level = AlertLevel::Warning;

    bool operator==(const AlertRule&) const = default;
};

/// The number of a comparison in the repository. A business rule has 0 to 4 for its number of failed rows, 5 to 9 for
/// their percentage; 10 and 11 for changes of the number, 12 and 13 for changes of the percentage.
[[nodiscard]] int alertCode(AlertSubject subject, const AlertRule& rule);
/// Sets comparison and ofFailedPercent; false for a number that means nothing.
[[nodiscard]] bool setAlertCode(AlertRule& rule, AlertSubject subject, int code);

/// "Null Count for field price is greater than 0": the condition that raises the alert. `metric` is the name of the
/// standard metric or of the custom metric's value; `input` names the field, the custom metric or the business rule.
[[nodiscard]] std::string alertSentence(AlertSubject subject, const AlertRule& rule, std::string_view metric,
                                        std::string_view input);

/// "Number of records is less than 1000": of an alert on the records of a table, which are kept as the Count of a
/// field.
[[nodiscard]] std::string recordsAlertSentence(const AlertRule& rule);

struct AlertVerdict {
    enum class State {
        Quiet,
        Raised,
        Unknown, ///< the run has no such figure, or a change has nothing to be a change of
    };
    State state = State::Unknown;
    std::optional<double> reference = {}; ///< what a change is measured against

    bool operator==(const AlertVerdict&) const = default;
};

/// `earlier` are the figures of the runs before, the latest first; those that have none are left out by the caller.
[[nodiscard]] AlertVerdict checkAlert(const AlertRule& rule, std::optional<double> figure,
                                      std::span<const double> earlier);

} // namespace tavix
