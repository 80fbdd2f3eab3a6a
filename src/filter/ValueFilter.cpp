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

/// The chosen values.
struct Chosen {
    std::vector<std::string> texts;
    bool null = false;
};

/// A list that is true for a row with one of the values.
ConditionList matching(const Chosen& chosen) {
    ConditionList list;
    if (!chosen.texts.empty())
        list.push_back(comparison(FilterOperation::EqualTo, chosen.texts));
    if (!chosen.texts.empty() && chosen.null)
        list.push_back(MakeConnector(Connector::Or));
    if (chosen.null)
        list.push_back(comparison(FilterOperation::IsNull));
    return list;
}

/// A list that is true for a row with any other value. Null compares as neither equal nor unequal, so it needs a
/// condition of its own.
ConditionList differing(const Chosen& chosen, DistributionKind kind) {
    if (chosen.texts.empty())
        return {comparison(FilterOperation::IsNotNull)};
    ConditionList list = {comparison(FilterOperation::NotEqualTo, chosen.texts)};
    if (chosen.null) {
        list.push_back(MakeConnector(Connector::And));
        list.push_back(comparison(FilterOperation::IsNotNull));
    } else if (kind == DistributionKind::Frequency) { // a null value has no pattern
        list.push_back(MakeConnector(Connector::Or));
        list.push_back(comparison(FilterOperation::IsNull));
    }
    return list;
}

/// Whether an OR is outside all parentheses; nothing when the parentheses close before they open.
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

/// Joins the lists so that each keeps its meaning; nothing when the first is not valid.
std::optional<ConditionList> join(ConditionList first, Connector with, const ConditionList& second) {
    const auto firstOpen = hasOpenOr(first);
    if (!firstOpen)
        return std::nullopt;
    if (first.empty())
        return second;
    const bool binds = with == Connector::And;
    if (binds && *firstOpen) {
        first.insert(first.begin(), MakeParenthesis(true));
        first.push_back(MakeParenthesis(false));
    }
    first.push_back(MakeConnector(with));
    const bool wrapSecond = binds && hasOpenOr(second).value_or(false);
    if (wrapSecond)
        first.push_back(MakeParenthesis(true));
    first.insert(first.end(), second.begin(), second.end());
    if (wrapSecond)
        first.push_back(MakeParenthesis(false));
    return first;
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

    const Error cannotExtend{"The filter was written as an expression, so values cannot be added to it. Edit the "
                             "expression, or stop filtering first."};
    ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    if (!parsed.understood || FindFault(parsed.conditions) ||
        WriteConditionBlock(parsed.conditions) + BuildExpression(parsed.conditions, parsed.action) != filterText)
        return cannotExtend;

    // The conditions describe either the rows that stay or those that go.
    const bool saysWhatStays = parsed.action == FilterAction::RemoveFailing;
    const bool same = saysWhatStays == (choice == ValueChoice::Keep);
    const auto list = join(std::move(parsed.conditions), saysWhatStays ? Connector::And : Connector::Or,
                           same ? matching(chosen) : differing(chosen, kind));
    if (!list)
        return cannotExtend;
    return ComposeFilterText(*list, parsed.action);
}

} // namespace tavix
