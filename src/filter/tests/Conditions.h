#pragma once

#include "base/tests/SourceFolder.h"
#include "filter/FilterText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

/// Condition lists as a test would write them down.
namespace tavix::testing {

inline CCondition onValue(FilterOperation operation, std::vector<std::string> values = {}) {
    CCondition condition;
    condition.operation = operation;
    condition.fieldType = FieldTypeCode::Value;
    condition.fieldName = "Value";
    condition.values = std::move(values);
    return condition;
}

inline CCondition onCount(FilterOperation operation, std::vector<std::string> values = {}) {
    CCondition condition = onValue(operation, std::move(values));
    condition.fieldType = FieldTypeCode::Count;
    condition.fieldName = "Count";
    return condition;
}

inline CCondition anyCase(CCondition condition) {
    condition.caseInsensitive = true;
    return condition;
}

inline CCondition wild(CCondition condition) {
    condition.wildcard = true;
    return condition;
}

inline CCondition joined(Connector connector) {
    CCondition condition;
    condition.conditionType = ConditionType::Connector;
    condition.connector = connector;
    return condition;
}

inline CCondition parenthesis(bool left, bool right) {
    CCondition condition;
    condition.conditionType = ConditionType::Parenthesis;
    condition.leftParen = left;
    condition.rightParen = right;
    return condition;
}

inline const CCondition kAnd = joined(Connector::And);
inline const CCondition kOr = joined(Connector::Or);
inline const CCondition kOpen = parenthesis(true, false);
inline const CCondition kClose = parenthesis(false, true);

/// The list of the files expected/long_list.*.
inline ConditionList longList() {
    CCondition opened = anyCase(onValue(FilterOperation::EqualTo, {"abc", "d e"}));
    opened.leftParen = true;
    CCondition closed = onCount(FilterOperation::GreaterThanOrEqualTo, {"10"});
    closed.rightParen = true;
    return {opened,
            kAnd,
            closed,
            kOr,
            kOpen,
            kOpen,
            onValue(FilterOperation::IsNull),
            kClose,
            kOr,
            wild(onValue(FilterOperation::NotEqualTo, {"O'*"})),
            kClose};
}

inline std::string withCrLf(std::string_view text) {
    std::string result;
    for (const char c : text)
        result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return result;
}

/// A file of tests/expected, its lines ended by CR LF.
inline std::string expectedText(const std::string& name) {
    std::ifstream file(sourceFile("src/filter/tests/expected/" + name), std::ios::binary);
    EXPECT_TRUE(file) << name;
    return withCrLf(std::string{std::istreambuf_iterator<char>(file), {}});
}

} // namespace tavix::testing
