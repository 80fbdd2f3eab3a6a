#include "filter/ValueFilter.h"

#include "filter/ConditionBlock.h"

#include <optional>
#include <utility>

namespace tavix {

namespace {

CCondition comparison(FilterOperation operation, std::vector<std::string> values = {}) {
    CCondition condition;
    condition.operation = operation;
    condition.fieldType = FieldTypeCode::Value;
    condition.fieldName = "Value";
    condition.values = std::move(values);
    return condition;
}

CCondition connector(Connector which) {
    CCondition condition;
    condition.conditionType = ConditionType::Connector;
    condition.connector = which;
    return condition;
}

CCondition parenthesis(bool left) {
    CCondition condition;
    condition.conditionType = ConditionType::Parenthesis;
    condition.leftParen = left;
    condition.rightParen = !left;
    return condition;
}

/// The chosen values.
struct Chosen {
    std::vector<std::string> texts;
    bool null = false;
};

/// True for a row with one of them.
ConditionList matching(const Chosen& chosen) {
    ConditionList list;
    if (!chosen.texts.empty())
        list.push_back(comparison(FilterOperation::EqualTo, chosen.texts));
    if (!chosen.texts.empty() && chosen.null)
        list.push_back(connector(Connector::Or));
    if (chosen.null)
        list.push_back(comparison(FilterOperation::IsNull));
    return list;
}

/// True for a row with any other. A null value compares as neither equal nor unequal, so it needs words of its own.
ConditionList differing(const Chosen& chosen, DistributionKind kind) {
    if (chosen.texts.empty())
        return {comparison(FilterOperation::IsNotNull)};
    ConditionList list = {comparison(FilterOperation::NotEqualTo, chosen.texts)};
    if (chosen.null) {
        list.push_back(connector(Connector::And));
        list.push_back(comparison(FilterOperation::IsNotNull));
    } else if (kind == DistributionKind::Frequency) { // a null value has no pattern
        list.push_back(connector(Connector::Or));
        list.push_back(comparison(FilterOperation::IsNull));
    }
    return list;
}

/// Whether an OR stands outside all parentheses; nothing when they close before they open.
std::optional<bool> hasOpenOr(const ConditionList& list) {
    int depth = 0;
    bool found = false;
    for (const CCondition& condition : list) {
        if (condition.conditionType == ConditionType::Connector) {
            found = found || (depth == 0 && condition.connector == Connector::Or);
            continue;
        }
        depth += condition.leftParen ? 1 : 0;
        depth -= condition.rightParen ? 1 : 0;
        if (depth < 0)
            return std::nullopt;
    }
    return found;
}

/// Both lists, so that each keeps its meaning; nothing when the first has none.
std::optional<ConditionList> join(ConditionList first, Connector with, const ConditionList& second) {
    const auto firstOpen = hasOpenOr(first);
    if (!firstOpen)
        return std::nullopt;
    if (first.empty())
        return second;
    const bool binds = with == Connector::And;
    if (binds && *firstOpen) {
        first.insert(first.begin(), parenthesis(true));
        first.push_back(parenthesis(false));
    }
    first.push_back(connector(with));
    const bool wrapSecond = binds && hasOpenOr(second).value_or(false);
    if (wrapSecond)
        first.push_back(parenthesis(true));
    first.insert(first.end(), second.begin(), second.end());
    if (wrapSecond)
        first.push_back(parenthesis(false));
    return first;
}

/// Without the block where it would not read back, or would end its comment too early.
std::string compose(const ConditionList& list, FilterAction action) {
    const std::string block = WriteConditionBlock(list);
    std::string text = block + BuildExpression(list, action);
    constexpr std::string_view kCommentEnd = "*/";
    const bool endsInTime = block.find(kCommentEnd) == block.rfind(kCommentEnd);
    const FilterAction other =
        action == FilterAction::RemoveFailing ? FilterAction::RemovePassing : FilterAction::RemoveFailing;
    const ParsedFilter back = ParseConditionBlock(text, other);
    if (endsInTime && back.conditions == list && back.action == action)
        return text;
    return text.substr(block.size());
}

} // namespace

Result<std::string> FilterByValues(std::string_view filterText, DistributionKind kind,
                                   const std::vector<KvbString>& values, ValueChoice choice) {
    Chosen chosen;
    for (const KvbString& value : values) {
        if (value.view().ends_with('\\'))
            return Error{"A value that ends in a backslash cannot be written in a filter."};
        if (value.isNull())
            chosen.null = true;
        else
            chosen.texts.push_back(value.str());
    }
    if (values.empty())
        return Error{"No value is selected."};

    const Error cannotExtend{"The filter was written as an expression, so that no value can be added to it. Edit the "
                             "expression, or stop filtering first."};
    ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    if (!parsed.understood || FindFault(parsed.conditions) ||
        WriteConditionBlock(parsed.conditions) + BuildExpression(parsed.conditions, parsed.action) != filterText)
        return cannotExtend;

    // What the conditions say is either what stays or what goes.
    const bool saysWhatStays = parsed.action == FilterAction::RemoveFailing;
    const bool same = saysWhatStays == (choice == ValueChoice::Keep);
    const auto list = join(std::move(parsed.conditions), saysWhatStays ? Connector::And : Connector::Or,
                           same ? matching(chosen) : differing(chosen, kind));
    if (!list)
        return cannotExtend;
    return compose(*list, parsed.action);
}

} // namespace tavix
