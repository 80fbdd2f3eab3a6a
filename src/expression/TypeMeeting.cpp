#include "expression/TypeMeeting.h"

#include "base/Characters.h"
#include "base/NumberText.h"
#include "expression/MadeNodes.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::expression {

namespace {

constexpr std::size_t kLongestShown = 40;

/// The number that a fixed text is; null when it is none.
Value numberOf(const Node& node) {
    if (!isFixedText(node))
        return {};
    if (const auto integer = parseInteger(node.text))
        return Value::ofInteger(*integer);
    const auto real = parseNumber(node.text);
    return real ? Value::ofReal(*real) : Value{};
}

bool isText(const NodePtr& node) {
    return node->type == Type::Text;
}
bool isNumeric(const NodePtr& node) {
    return isNumber(node->type);
}

bool isAnyOf(const std::vector<NodePtr>& values, Type type) {
    return std::ranges::any_of(values, [&](const NodePtr& node) { return node->type == type; });
}

/// Whether fixed texts are read as numbers: there is a number, and every text is one.
bool readsNumbers(const std::vector<NodePtr>& values) {
    return std::ranges::any_of(values, isNumeric) &&
           std::ranges::all_of(values, [](const NodePtr& node) { return !isText(node) || !numberOf(*node).isNull(); });
}

/// The first value that does not go with one before it.
Met clash(const std::vector<NodePtr>& values) {
    Met met;
    Type before = Type::Null;
    const bool hasDate = isAnyOf(values, Type::Date);
    for (std::size_t i = 0; i < values.size() && !met.clash; ++i) {
        const Type type = values[i]->type;
        if (type == Type::Null || type == Type::Text)
            continue;
        const bool isAlike = before == Type::Null || before == type || (isNumber(before) && isNumber(type));
        if (isAlike) {
            before = type;
            continue;
        }
        if (!hasDate && std::ranges::any_of(values, isText))
            break; // all become texts
        met.clash = i;
        met.clashesWith = before;
    }
    return met;
}

Type commonType(const std::vector<NodePtr>& values) {
    if (isAnyOf(values, Type::Date))
        return Type::Date;
    if (isAnyOf(values, Type::Text))
        return Type::Text;
    if (isAnyOf(values, Type::Real))
        return Type::Real;
    const auto typed = std::ranges::find_if(values, [](const NodePtr& node) { return node->type != Type::Null; });
    return typed == values.end() ? Type::Null : (*typed)->type;
}

std::string quoted(std::string_view text) {
    return fmt::format("'{}'", shortened(text, kLongestShown));
}

} // namespace

Met bringTogether(std::vector<NodePtr>& values, Meeting meeting, Folder& folder) {
    Met met = clash(values);
    if (met.clash)
        return met;
    if (meeting != Meeting::Chosen && readsNumbers(values)) {
        for (NodePtr& node : values)
            node = isText(node) ? makeConstant(numberOf(*node)) : std::move(node);
    }
    met.type = commonType(values);
    if (meeting == Meeting::Compared && std::ranges::all_of(values, isNumeric))
        return met;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string fixed = isFixedText(*values[i]) ? values[i]->text : std::string();
        const bool isFixed = isFixedText(*values[i]);
        values[i] = brought(std::move(values[i]), met.type, folder);
        if (met.type == Type::Date && isFixed && values[i]->isConstant() && values[i]->constant.isNull()) {
            met.clash = i;
            met.notDate = quoted(fixed);
            return met;
        }
    }
    return met;
}

std::string remarkOnMeeting(const std::vector<NodePtr>& values, bool isOrder) {
    const auto number = std::ranges::find_if(values, isNumeric);
    const auto isOpen = [](const NodePtr& node) { return isText(node) && !node->isConstant(); };
    const auto open = std::ranges::find_if(values, isOpen);
    if (isAnyOf(values, Type::Date))
        return {};
    if (number != values.end() && open != values.end()) {
        const std::string name =
            (*open)->kind == NodeKind::Field ? fmt::format("`{}`", shortened((*open)->text, kLongestShown)) : "...";
        return fmt::format("this compares texts, among which {}; to compare numbers write tonumber({})",
                           isOrder ? "'9' stands behind '10'" : "'5.0' is not '5'", name);
    }
    const auto fixed = std::ranges::find_if(values, [](const NodePtr& node) { return isFixedText(*node); });
    if (fixed == values.end())
        return {};
    if (number != values.end())
        return numberOf(**fixed).isNull() || !readsNumbers(values)
                   ? fmt::format("this compares texts, since {} is not a number", quoted((*fixed)->text))
                   : fmt::format("the text {} is read as a number here; write it without quotes",
                                 quoted((*fixed)->text));
    const bool isTruth = (*fixed)->text == "true" || (*fixed)->text == "false";
    if (isAnyOf(values, Type::Boolean) && !isTruth)
        return fmt::format("this compares texts: true is 'true' here and false 'false', and neither is {}",
                           quoted((*fixed)->text));
    return {};
}

} // namespace tavix::expression
