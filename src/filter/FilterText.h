#pragma once

#include "filter/CCondition.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

using ConditionList = std::vector<CCondition>;

/// Why a condition list is not a valid expression.
enum class ConditionFault { ExtraRightParenthesis, ExtraLeftParenthesis, EndsWithConnector };

/// How many entries open and close a parenthesis, whatever their type.
struct ParenthesisCounts {
    int left = 0;
    int right = 0;

    bool operator==(const ParenthesisCounts&) const = default;
};
[[nodiscard]] ParenthesisCounts CountParentheses(const ConditionList& conditions);

/// Nothing for a valid list or an empty one.
[[nodiscard]] std::optional<ConditionFault> FindFault(const ConditionList& conditions);

/// Puts a backslash before each single quote.
[[nodiscard]] std::string EscapeSingleQuotes(std::string_view value);

/// The list as code that returns true for a row that stays. A list with a fault gives a sentence that says so; an empty
/// list gives "". A code that does not exist gives words that the language rejects, never code with another meaning.
[[nodiscard]] std::string BuildExpression(const ConditionList& conditions, FilterAction action);

/// The list in words, with lines ended by CR LF; also for lists with faults.
[[nodiscard]] std::string BuildPlainText(const ConditionList& conditions);

} // namespace tavix
