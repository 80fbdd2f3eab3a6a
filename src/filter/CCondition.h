#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavix {

// Condition blocks contain these numbers. A block may contain any other number, which is kept.

enum class FilterOperation : std::int32_t {
    EqualTo = 0,
    GreaterThan = 1,
    GreaterThanOrEqualTo = 2,
    LessThan = 3,
    LessThanOrEqualTo = 4,
    NotEqualTo = 5,
    Contains = 6,
    DoesNotContain = 7,
    BeginsWith = 8,
    EndsWith = 9,
    IsUppercase = 10,
    IsNotUppercase = 11,
    IsLowercase = 12,
    IsNotLowercase = 13,
    IsNumeric = 14,
    IsNotNumeric = 15,
    IsNull = 16,
    IsNotNull = 17,
    HasControlCharacters = 18,
};

enum class Connector : std::int32_t { And = 0, Or = 1 };

enum class ConditionType : std::int32_t { Comparison = 0, Connector = 1, Parenthesis = 2 };

enum class FieldTypeCode : std::int32_t { None = 0, Count = 2, Value = 4 };

/// Which rows are removed from the report: those that meet the conditions or those that do not.
enum class FilterAction : std::int32_t { RemovePassing = 0, RemoveFailing = 1 };

/// One entry of a filter's condition list.
struct CCondition {
    FilterOperation operation = FilterOperation::EqualTo; ///< of a comparison
    Connector connector = Connector::And;                 ///< of a connector
    ConditionType conditionType = ConditionType::Comparison;
    bool leftParen = false;
    bool rightParen = false;
    bool caseInsensitive = false;
    bool wildcard = false; ///< the value holds '*' or '?' wildcards
    FieldTypeCode fieldType = FieldTypeCode::None;
    std::string fieldName;           ///< "Value" or "Count"
    std::vector<std::string> values; ///< in the order in which they were entered

    bool operator==(const CCondition&) const = default;
};

[[nodiscard]] inline CCondition MakeConnector(Connector connector) {
    CCondition condition;
    condition.conditionType = ConditionType::Connector;
    condition.connector = connector;
    return condition;
}

/// An opening parenthesis, or a closing one.
[[nodiscard]] inline CCondition MakeParenthesis(bool left) {
    CCondition condition;
    condition.conditionType = ConditionType::Parenthesis;
    condition.leftParen = left;
    condition.rightParen = !left;
    return condition;
}

} // namespace tavix
