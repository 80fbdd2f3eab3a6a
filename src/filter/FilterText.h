#pragma once

#include "filter/CCondition.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

using ConditionList = std::vector<CCondition>;

/// Why a condition list is no expression.
enum class ConditionFault { ExtraRightParenthesis, ExtraLeftParenthesis, EndsWithConnector };

/// How many entries open and close a parenthesis, whatever their type.
struct ParenthesisCounts {
    int left = 0;
    int right = 0;

    bool operator==(const ParenthesisCounts&) const = default;
};
[[nodiscard]] ParenthesisCounts CountParentheses(const ConditionList& conditions);

/// Nothing for a list in order, and for an empty one.
[[nodiscard]] std::optional<ConditionFault> FindFault(const ConditionList& conditions);

/// Each single quote with a backslash before it, nothing else changed.
[[nodiscard]] std::string EscapeSingleQuotes(std::string_view value);

/// The list in the expression language; it returns true for a row that stays. A list with a fault gives a sentence
/// that says so instead of code; an empty list gives "". A code that does not exist gives words that the language
/// refuses, never code with another meaning.
[[nodiscard]] std::string BuildExpression(const ConditionList& conditions, FilterAction action);

/// The list in words, lines ended by CR LF; lists with faults too.
[[nodiscard]] std::string BuildPlainText(const ConditionList& conditions);

} // namespace tavix
