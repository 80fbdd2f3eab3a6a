#pragma once

#include "base/Metrics.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Rules that the figures of a run suggest for its job. Nothing is stored; report/JobFileText.h writes them down.
namespace tavix {

enum class SuggestionKind : std::uint8_t {
    NotNull,
    Unique,
    Constant,
    Domain,
    Pattern,
    Range,
    Length,
    NoCutOff,
    Reference,
    Coverage,
    NoLowerMinimum,
};

struct SuggestionKindInfo {
    SuggestionKind kind;
    std::string_view word; ///< as users read and type it
};

/// In the order in which the suggestions of a field are listed.
inline constexpr std::array<SuggestionKindInfo, 11> kSuggestionKinds{
    {{SuggestionKind::NotNull, "not null"},
     {SuggestionKind::Unique, "unique"},
     {SuggestionKind::Constant, "constant"},
     {SuggestionKind::Domain, "domain"},
     {SuggestionKind::Pattern, "pattern"},
     {SuggestionKind::Range, "range"},
     {SuggestionKind::Length, "length"},
     {SuggestionKind::NoCutOff, "no cut-off"},
     {SuggestionKind::Reference, "reference"},
     {SuggestionKind::Coverage, "coverage"},
     {SuggestionKind::NoLowerMinimum, "no lower minimum"}}};

[[nodiscard]] std::string_view suggestionWord(SuggestionKind kind);

/// How sure it is that the data is meant to keep the rule.
enum class SuggestionConfidence : std::uint8_t { Low, Medium, High };

/// "low", "medium" or "high".
[[nodiscard]] std::string_view confidenceWord(SuggestionConfidence confidence);

/// How a job file writes a suggestion.
enum class SuggestedElement : std::uint8_t {
    Rule,        ///< a condition on every row
    Alert,       ///< an alert on a metric of the field
    MetricAlert, ///< a custom metric and an alert on it
    Remark,      ///< a comment: the language of jobs cannot express it
};

/// "rule", "alert", "custom metric" or "remark".
[[nodiscard]] std::string_view elementWord(SuggestedElement element);

/// An alert that a suggestion sets, on a metric of the field or on its custom metric.
struct SuggestedAlert {
    MetricId metric = MetricId::Count; ///< unused for a custom metric
    bool isLeast = false;              ///< raised below `bound`, else above
    double bound = 0;

    bool operator==(const SuggestedAlert&) const = default;
};

struct RuleSuggestion {
    int tableId = -1;
    int fieldId = -1;
    std::string table; ///< as shown
    std::string field;
    SuggestionKind kind = SuggestionKind::NotNull;
    SuggestedElement element = SuggestedElement::Rule;
    std::string name; ///< of the rule or custom metric, unique in the table; "iata is unique"
    /// Of a rule, the condition that every row must meet; of a custom metric, its expression; else empty. In the
    /// expression language.
    std::string condition;
    std::optional<SuggestedAlert> alert; ///< of Alert and MetricAlert
    std::string reason;                  ///< in figures: "unique in 12 of 12 runs"
    std::string remark;                  ///< what to know before using it; usually empty
    SuggestionConfidence confidence = SuggestionConfidence::Medium;
    /// Of the run: the rows that violate it; for a coverage the days or months without rows.
    std::int64_t violations = 0;
    std::string_view violationNoun = "row"; ///< "row", "day" or "month"
    /// A filter over the field's values (`Value`) that passes exactly those of the violating rows; empty if the
    /// violation does not depend on the value alone.
    std::string violatingValues;

    /// The rule as users read it: the condition, or what the alert watches ("Unique Percent at least 100").
    [[nodiscard]] std::string ruleText() const;
    /// "none", "12 rows", "1 day".
    [[nodiscard]] std::string violationText() const;

    bool operator==(const RuleSuggestion&) const = default;
};

struct SuggestionOptions {
    int tableId = -1;                    ///< -1: all tables of the run
    int fieldId = -1;                    ///< -1: all fields
    std::size_t longestDomain = 50;      ///< values in a domain
    double leastPatternPercent = 99;     ///< of the values that a pattern must have
    std::vector<SuggestionKind> kinds{}; ///< empty: all
    std::function<void()> pulse{};       ///< called regularly; an exception from it ends the search
};

} // namespace tavix
