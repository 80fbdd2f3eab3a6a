#include "expression/TypeUnification.h"

#include "base/Characters.h"
#include "expression/NodeFactory.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::expression {

namespace {

constexpr std::size_t kLongestShown = 40;

/// The number that a constant text represents; null when it is not one.
Value numberOf(const Node& node) {
    return isFixedText(node) ? numberOfText(node.text) : Value{};
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

/// Whether constant texts are read as numbers: there is a number, and every text is one.
bool readsNumbers(const std::vector<NodePtr>& values) {
    return std::ranges::any_of(values, isNumeric) &&
           std::ranges::all_of(values, [](const NodePtr& node) { return !isText(node) || !numberOf(*node).isNull(); });
}

/// The first value whose type does not go with one before it.
Unified clash(const std::vector<NodePtr>& values) {
    Unified unified;
    Type before = Type::Null;
    const bool hasDate = isAnyOf(values, Type::Date);
    for (std::size_t i = 0; i < values.size() && !unified.clash; ++i) {
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
        unified.clash = i;
        unified.clashesWith = before;
    }
    return unified;
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

Unified unify(std::vector<NodePtr>& values, Unification unification, ConstantFolder& folder) {
    Unified unified = clash(values);
    if (unified.clash)
        return unified;
    if (unification != Unification::Chosen && readsNumbers(values)) {
        for (NodePtr& node : values)
            node = isText(node) ? makeConstant(numberOf(*node)) : std::move(node);
    }
    unified.type = commonType(values);
    if (unification == Unification::Compared && std::ranges::all_of(values, isNumeric))
        return unified;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string fixed = isFixedText(*values[i]) ? values[i]->text : std::string();
        const bool isFixed = isFixedText(*values[i]);
        values[i] = convertedNode(std::move(values[i]), unified.type, folder);
        if (unified.type == Type::Date && isFixed && values[i]->isConstant() && values[i]->constant.isNull()) {
            unified.clash = i;
            unified.notDate = quoted(fixed);
            return unified;
        }
    }
    return unified;
}

std::string remarkOnTypes(const std::vector<NodePtr>& values, bool isOrder) {
    const auto number = std::ranges::find_if(values, isNumeric);
    const auto isOpen = [](const NodePtr& node) { return isText(node) && !node->isConstant(); };
    const auto open = std::ranges::find_if(values, isOpen);
    if (isAnyOf(values, Type::Date))
        return {};
    if (number != values.end() && open != values.end()) {
        const std::string name =
            (*open)->kind == NodeKind::Field ? fmt::format("`{}`", shortened((*open)->text, kLongestShown)) : "...";
        return fmt::format("this compares texts, where {}; to compare numbers write tonumber({})",
                           isOrder ? "'9' comes after '10'" : "'5.0' differs from '5'", name);
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
