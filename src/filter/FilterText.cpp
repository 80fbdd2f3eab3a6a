#include "filter/FilterText.h"

#include "access/FilterCode.h"
#include "base/Ascii.h"
#include "base/Characters.h"
#include "expression/TextOperators.h"
#include "filter/FilterOperations.h"

#include <fmt/format.h>

namespace tavix {

namespace {

std::string_view faultText(ConditionFault fault) {
    switch (fault) {
    case ConditionFault::ExtraRightParenthesis:
        return "Condition list contains an extra right parenthesis";
    case ConditionFault::ExtraLeftParenthesis:
        return "Condition list contains an extra left parenthesis";
    case ConditionFault::EndsWithConnector:
        break;
    }
    return "Condition list cannot end with AND or OR";
}

std::string connectorText(Connector connector) {
    switch (connector) {
    case Connector::And:
        return "and";
    case Connector::Or:
        return "or";
    }
    return fmt::format("unknown connector {}", static_cast<std::int32_t>(connector));
}

/// One comparison in the expression language.
class ComparisonCode {
  public:
    explicit ComparisonCode(const CCondition& condition)
        : m_condition(condition),
          m_field("`" + condition.fieldName + "`"),
          m_isText(condition.fieldType == FieldTypeCode::Value) {}

    [[nodiscard]] std::string build() const {
        switch (m_condition.operation) {
        case FilterOperation::EqualTo:
            return equality("", " == ");
        case FilterOperation::NotEqualTo:
            return equality("not ", " != ");
        case FilterOperation::GreaterThan:
            return subject() + " > " + operand();
        case FilterOperation::GreaterThanOrEqualTo:
            return subject() + " >= " + operand();
        case FilterOperation::LessThan:
            return subject() + " < " + operand();
        case FilterOperation::LessThanOrEqualTo:
            return subject() + " <= " + operand();
        case FilterOperation::Contains:
            return containment("!=");
        case FilterOperation::DoesNotContain:
            return containment("==");
        case FilterOperation::BeginsWith:
            return endComparison("left");
        case FilterOperation::EndsWith:
            return endComparison("right");
        case FilterOperation::IsUppercase:
            return caseTest("upper", "==");
        case FilterOperation::IsNotUppercase:
            return caseTest("upper", "!=");
        case FilterOperation::IsLowercase:
            return caseTest("lower", "==");
        case FilterOperation::IsNotLowercase:
            return caseTest("lower", "!=");
        case FilterOperation::IsNumeric:
            return call("isnumber");
        case FilterOperation::IsNotNumeric:
            return "not " + call("isnumber");
        case FilterOperation::IsNull:
            return call("isnull");
        case FilterOperation::IsNotNull:
            return "not " + call("isnull");
        case FilterOperation::HasControlCharacters:
            return call("has_control_chars");
        }
        return m_field + " " + OperationLabel(m_condition.operation);
    }

  private:
    [[nodiscard]] std::string call(std::string_view function) const { return fmt::format("{}({})", function, m_field); }
    [[nodiscard]] std::string fieldWhen(bool lowered) const { return lowered ? call("lower") : m_field; }
    [[nodiscard]] std::string subject() const { return fieldWhen(m_isText && m_condition.caseInsensitive); }

    /// A block may contain a comparison without its value.
    [[nodiscard]] std::string_view firstValue() const {
        return m_condition.values.empty() ? std::string_view() : m_condition.values.front();
    }
    [[nodiscard]] std::string quoted(std::string_view value) const {
        const std::string escaped = EscapeSingleQuotes(value);
        return "'" + (m_condition.caseInsensitive ? expression::lowerText(escaped) : escaped) + "'";
    }
    [[nodiscard]] std::string operandOf(std::string_view value) const {
        return m_isText ? quoted(value) : std::string(value);
    }
    [[nodiscard]] std::string operand() const { return operandOf(firstValue()); }

    [[nodiscard]] std::string equality(std::string_view negation, std::string_view comparison) const {
        if (m_condition.values.size() != 1) {
            std::vector<std::string> operands;
            for (const std::string& value : m_condition.values)
                operands.push_back(operandOf(value));
            return fmt::format("{}inlist({},{})", negation, subject(), fmt::join(operands, ","));
        }
        if (m_condition.wildcard && m_isText)
            return fmt::format("{}match_string({},{})", negation, subject(), operand());
        return subject() + std::string(comparison) + operand();
    }

    /// Quotes the value of a count too.
    [[nodiscard]] std::string containment(std::string_view comparison) const {
        return fmt::format("instr({},{}) {} 0", fieldWhen(m_condition.caseInsensitive), quoted(firstValue()),
                           comparison);
    }

    [[nodiscard]] std::string endComparison(std::string_view end) const {
        return fmt::format("compare({}({},{}),'{}',{}) == 0", end, m_field, countCharacters(firstValue()),
                           EscapeSingleQuotes(firstValue()), m_condition.caseInsensitive);
    }

    [[nodiscard]] std::string caseTest(std::string_view function, std::string_view comparison) const {
        return fmt::format("{} {} {}", call(function), comparison, m_field);
    }

    const CCondition& m_condition;
    std::string m_field;
    bool m_isText;
};

std::string valueInWords(const CCondition& condition, std::string_view value) {
    if (condition.fieldType != FieldTypeCode::Value)
        return std::string(value);
    return fmt::format("\"{}\"{}", value, condition.caseInsensitive ? " (case insensitive)" : "");
}

std::string equalityInWords(const CCondition& condition) {
    const bool equal = condition.operation == FilterOperation::EqualTo;
    const std::string label = condition.wildcard ? (equal ? "like" : "not like") : OperationLabel(condition.operation);
    const bool several = condition.values.size() > 1;
    std::string text = several ? "(" : "";
    bool first = true;
    for (const std::string& value : condition.values) {
        if (!first)
            text += equal ? " OR\r\n" : " AND\r\n";
        first = false;
        text += condition.fieldName + " " + label + " " + valueInWords(condition, value);
    }
    return text + (several ? ")" : "");
}

std::string comparisonInWords(const CCondition& condition) {
    if (TakesSeveralValues(condition.operation))
        return equalityInWords(condition);
    std::string text = condition.fieldName + " " + OperationLabel(condition.operation);
    if (TakesValue(condition.operation))
        text += " " + valueInWords(condition, condition.values.empty() ? std::string_view() : condition.values.front());
    return text;
}

/// The common part of both renderings: connectors and parentheses; `comparison` renders the rest.
template <typename Comparison, typename Word>
std::string render(const ConditionList& conditions, Comparison comparison, Word word) {
    std::string text;
    for (const CCondition& condition : conditions) {
        switch (condition.conditionType) {
        case ConditionType::Connector:
            text += " " + word(connectorText(condition.connector)) + "\r\n";
            continue;
        case ConditionType::Parenthesis:
            text += condition.leftParen ? "(" : ")";
            continue;
        case ConditionType::Comparison:
            text += condition.leftParen ? "(" : "";
            text += comparison(condition);
            text += condition.rightParen ? ")" : "";
            continue;
        }
        text += fmt::format(" unknown condition type {} ", static_cast<std::int32_t>(condition.conditionType));
    }
    return text;
}

} // namespace

ParenthesisCounts CountParentheses(const ConditionList& conditions) {
    ParenthesisCounts counts;
    for (const CCondition& condition : conditions) {
        counts.left += condition.leftParen ? 1 : 0;
        counts.right += condition.rightParen ? 1 : 0;
    }
    return counts;
}

std::optional<ConditionFault> FindFault(const ConditionList& conditions) {
    const ParenthesisCounts counts = CountParentheses(conditions);
    if (counts.left < counts.right)
        return ConditionFault::ExtraRightParenthesis;
    if (counts.left > counts.right)
        return ConditionFault::ExtraLeftParenthesis;
    if (!conditions.empty() && conditions.back().conditionType == ConditionType::Connector)
        return ConditionFault::EndsWithConnector;
    return std::nullopt;
}

std::string EscapeSingleQuotes(std::string_view value) {
    std::string escaped;
    escaped.reserve(value.size());
    for (const char c : value) {
        if (c == '\'')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string BuildExpression(const ConditionList& conditions, FilterAction action) {
    if (conditions.empty())
        return {};
    if (const auto fault = FindFault(conditions))
        return fmt::format("{}{}", kCannotDisplay, faultText(*fault));
    const std::string code = render(
        conditions, [](const CCondition& condition) { return ComparisonCode(condition).build(); },
        [](std::string connector) { return connector; });
    const bool keepPassing = action == FilterAction::RemoveFailing;
    return fmt::format("if {} then\r\n   return {}\r\nelse\r\n   return {}\r\n", code, keepPassing, !keepPassing);
}

std::string BuildPlainText(const ConditionList& conditions) {
    return render(conditions, comparisonInWords, [](std::string_view word) { return asciiUpper(word); });
}

} // namespace tavix
