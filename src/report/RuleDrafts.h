#pragma once

#include "report/FieldEvidence.h"
#include "report/RuleSuggestion.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

// Where the condition of a draft reads the field: characters that no expression has.
inline constexpr char kOperand = '\1';
inline constexpr char kNumber = '\2'; ///< compared with numbers: a column of a job by itself, a text must be converted

/// A rule that the figures of a field suggest, before its violations are counted.
struct RuleDraft {
    SuggestionKind kind = SuggestionKind::NotNull;
    SuggestedElement element = SuggestedElement::Rule;
    std::string predicate; ///< follows the field in the name of a rule, "is unique"; begins that of a custom metric
    /// Conditions with kOperand and kNumber for the field, of a Rule; the last is taken unless an earlier one has no
    /// more than `expected` violations.
    std::vector<std::string> conditions{};
    std::string expression{}; ///< of a MetricAlert
    std::optional<SuggestedAlert> alert{};
    std::string reason{};
    std::string remark{};
    SuggestionConfidence confidence = SuggestionConfidence::Medium;
    std::int64_t expected = 0;
    std::optional<std::int64_t> violations{}; ///< if the figures give them; else they are counted
    std::string_view violationNoun = "row";
    double mostPercent = 1; ///< of the rows that may violate it; with more it is not suggested
};

/// 2^53: integers up to here are exact as doubles.
inline constexpr double kExactIntegers = 9007199254740992.0;

/// With fewer rows nothing is suggested.
inline constexpr std::int64_t kFewestRows = 20;

/// A condition that also accepts null or blank values where the field has them.
[[nodiscard]] std::string withMissing(const FieldEvidence& field, const std::string& condition);

/// A confidence that falls with few rows, a sample or violations, and rises with the runs.
[[nodiscard]] SuggestionConfidence confidenceOf(const FieldEvidence& field, bool isExact);

/// " in 3 runs", or "" for one.
[[nodiscard]] std::string overRuns(const FieldEvidence& field);

// The suggestions of each group of figures. `drafts` receives it; a field gets a draft only if an earlier one in this
// order does not say as much.
void draftFilled(const FieldEvidence& field, std::vector<RuleDraft>& drafts);
void draftUnique(const FieldEvidence& field, std::vector<RuleDraft>& drafts);
/// Also the constant. `longest` is the largest number of values.
void draftDomain(const FieldEvidence& field, std::size_t longest, std::vector<RuleDraft>& drafts);
void draftPattern(const FieldEvidence& field, double leastPercent, std::vector<RuleDraft>& drafts);
/// Also of texts that were cut off; `tail` is for texts only.
void draftLength(const FieldEvidence& field, const LengthTail& tail, std::vector<RuleDraft>& drafts);
/// Of numbers and dates; also the lowest value over the runs.
void draftRange(const FieldEvidence& field, std::vector<RuleDraft>& drafts);

/// `days` are the different days of a field of dates, in order, as days since 1970; empty if it has others.
void draftCoverage(const FieldEvidence& field, const std::vector<std::int64_t>& days, std::vector<RuleDraft>& drafts);

[[nodiscard]] bool hasDraft(const std::vector<RuleDraft>& drafts, std::initializer_list<SuggestionKind> kinds);

} // namespace tavix
