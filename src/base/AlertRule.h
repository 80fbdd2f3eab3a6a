#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// An alert is raised when a figure of a run crosses a threshold.
namespace tavix {

enum class AlertSubject {
    StandardMetric, ///< of a field
    CustomMetric,
    BusinessRule, ///< the rows that violate it, or their percentage
};

/// "SM", "CM" or "BR", as alerts are marked in the repository.
[[nodiscard]] std::string_view alertTypeCode(AlertSubject subject);
/// The subject with exactly this code.
[[nodiscard]] std::optional<AlertSubject> findAlertSubject(std::string_view typeCode);
/// The same in any case; a standard metric for any other text.
[[nodiscard]] AlertSubject alertSubjectOf(std::string_view typeCode);
/// "Standard Metric", "Custom Metric" or "Business Rule".
[[nodiscard]] std::string_view alertTypeWord(AlertSubject subject);

/// The comparison that raises the alert. For a business rule the repository stores a different number, see alertCode().
enum class AlertComparison {
    Greater = 0,
    Less = 1,
    Equal = 2,
    Outside = 3, ///< the range from value1 to value2, which includes both ends
    Inside = 4,
    ChangedBy = 5,        ///< by more than value1, up or down
    ChangedByPercent = 6, ///< by more than value1 percent of the reference
};

[[nodiscard]] bool isChange(AlertComparison comparison);
[[nodiscard]] bool isRange(AlertComparison comparison);

enum class AlertLevel { Warning, Error };

[[nodiscard]] std::string_view alertLevelWord(AlertLevel level);

/// The figure that a change is measured against.
enum class AlertReference {
    Mean,        ///< of the last `runs` runs that have the figure: with 1, the run before
    Median,      ///< of the same
    SameWeekday, ///< the mean of the last `runs` runs that started on the same day of the week, by UTC
};

/// "mean", "median" or "weekday", as alerts are stored and job files name it.
[[nodiscard]] std::string_view alertReferenceWord(AlertReference reference);
[[nodiscard]] std::optional<AlertReference> findAlertReference(std::string_view word);

struct AlertRule {
    AlertComparison comparison = AlertComparison::Greater;
    bool ofFailedPercent =
        false; ///< of a business rule: checks the percentage of violating rows instead of their number
    double value1 = 0;
    double value2 = 0; ///< of a range
    int runs = 1;      ///< the reference of a change is made of so many earlier runs, or of as many as there are
    AlertLevel level = AlertLevel::Warning;
    AlertReference reference = AlertReference::Mean;

    bool operator==(const AlertRule&) const = default;
};

/// The number of a comparison in the repository. Of a business rule, 0 to 4 compare the number of failed rows and 5 to
/// 9 their percentage; 10 and 11 are changes of the number, 12 and 13 changes of the percentage.
[[nodiscard]] int alertCode(AlertSubject subject, const AlertRule& rule);
/// Sets comparison and ofFailedPercent; false for an unknown number.
[[nodiscard]] bool setAlertCode(AlertRule& rule, AlertSubject subject, int code);

/// "Null Count for field price is greater than 0": the condition that raises the alert. `metric` is the name of the
/// standard metric or of the custom metric's value; `input` is the name of the field, custom metric or business rule.
/// A change against anything but the run before says so: "... by more than 5 against the mean of 3 runs".
[[nodiscard]] std::string alertSentence(AlertSubject subject, const AlertRule& rule, std::string_view metric,
                                        std::string_view input);

/// "Number of records is less than 1000": the condition of an alert on the records of a table.
[[nodiscard]] std::string recordsAlertSentence(const AlertRule& rule);

struct AlertVerdict {
    enum class State {
        Quiet,
        Raised,
        Unknown, ///< the run does not have the figure, or no earlier run has one to compare with
    };
    State state = State::Unknown;
    std::optional<double> reference = {}; ///< what a change is measured against

    bool operator==(const AlertVerdict&) const = default;
};

/// A figure of an earlier run.
struct RunFigure {
    double value = 0;
    int weekday = 1; ///< of the run's start by UTC, 1 Monday to 7 Sunday
};

/// `weekday` is that of the run; `earlier` are the figures of the earlier runs that have one, the latest first.
[[nodiscard]] AlertVerdict checkAlert(const AlertRule& rule, std::optional<double> figure, int weekday,
                                      std::span<const RunFigure> earlier);
/// Whether still earlier runs could change the reference of checkAlert().
[[nodiscard]] bool needsEarlierRuns(const AlertRule& rule, int weekday, std::span<const RunFigure> earlier);

} // namespace tavix
