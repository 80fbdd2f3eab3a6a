#include "expression/CellComparisons.h"

#include "base/Characters.h"
#include "base/DateTicks.h"
#include "expression/Cells.h"
#include "expression/Conversion.h"
#include "expression/NodeFactory.h"
#include "expression/NumberFunctions.h"
#include "expression/NumberReader.h"
#include "expression/TextOperators.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace tavix::expression {

namespace {

constexpr std::size_t kLongestShown = 40;

bool isCell(const Node& node) {
    return node.kind == NodeKind::Field && node.type == Type::Text;
}
bool isNumeric(const Node& node) {
    return isNumber(node.type);
}
bool isFixedNumber(const Node& node) {
    return isFixedText(node) && !numberOfText(node.text).isNull();
}

template <typename Test>
bool isAny(const std::vector<NodePtr>& nodes, Test test) {
    return std::ranges::any_of(nodes, [&](const NodePtr& node) { return test(*node); });
}

/// How two values are compared.
enum class Pair : std::uint8_t {
    Elsewise, ///< by the rules for all expressions
    Values,   ///< two numbers or two texts
    CellNumber,
    NumberCell,
    Cells,
};

Pair pairOf(const Node& left, const Node& right) {
    if (isCell(left) && isCell(right))
        return Pair::Cells;
    if (isCell(left) && isNumeric(right))
        return Pair::CellNumber;
    if (isNumeric(left) && isCell(right))
        return Pair::NumberCell;
    const bool areTexts = left.type == Type::Text && right.type == Type::Text;
    return areTexts || (isNumeric(left) && isNumeric(right)) ? Pair::Values : Pair::Elsewise;
}

bool isOfCells(Pair pair) {
    return pair != Pair::Elsewise && pair != Pair::Values;
}

std::optional<int> orderOf(Pair pair, const Value& left, const Value& right) {
    switch (pair) {
    case Pair::Cells:
        return orderOfCells(left.text, right.text);
    case Pair::CellNumber:
        return orderOfCell(left.text, right);
    case Pair::NumberCell: {
        const auto order = orderOfCell(right.text, left);
        return order ? std::optional(-*order) : std::nullopt;
    }
    default:
        return compareValues(left, right);
    }
}

/// between(), where at least one limit is compared with cells.
class CellsBetween final : public PreparedFunction {
  public:
    CellsBetween(Pair low, Pair high) : m_low(low), m_high(high) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const auto low = orderOf(m_low, arguments[0], arguments[1]);
        const auto high = orderOf(m_high, arguments[0], arguments[2]);
        return low && high ? Value::ofBoolean(*low >= 0 && *high <= 0) : Value{};
    }

  private:
    Pair m_low;
    Pair m_high;
};

/// min() or max() of cells: of numbers when all are, of dates when all are, else of texts.
class ExtremeCell final : public PreparedFunction {
  public:
    explicit ExtremeCell(bool isGreatest) : m_isGreatest(isGreatest) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        const auto isNumberCell = [](const Value& cell) { return isPlainNumber(cell.text); };
        const auto isDateCell = [](const Value& cell) { return parseDate(cell.text).has_value(); };
        const bool isTyped = std::ranges::all_of(arguments, isNumberCell) || std::ranges::all_of(arguments, isDateCell);
        const Value* best = &arguments.front();
        for (const Value& cell : arguments) {
            const int order = isTyped ? orderOfCells(cell.text, best->text) : compareTexts(cell.text, best->text);
            if (m_isGreatest ? order > 0 : order < 0)
                best = &cell;
        }
        return *best;
    }

  private:
    bool m_isGreatest;
};

/// nullif() of a cell and a number or another cell.
class NullIfCell final : public PreparedFunction {
  public:
    explicit NullIfCell(Pair pair) : m_pair(pair) {}

    Value call(std::span<const Value> arguments, Scratch& /*scratch*/) const override {
        return orderOf(m_pair, arguments[0], arguments[1]) == 0 ? Value{} : arguments[0];
    }

  private:
    Pair m_pair;
};

NodePtr comparisonOf(Comparison comparison, NodePtr left, NodePtr right) {
    const bool isOfCell = isOfCells(pairOf(*left, *right));
    NodePtr node = makeNode(isOfCell ? NodeKind::CompareCell : NodeKind::Compare, Type::Boolean);
    node->comparison = comparison;
    if (!isCell(*left) && isOfCell) {
        std::swap(left, right);
        node->comparison = mirrored(comparison);
    }
    node->children.push_back(std::move(left));
    node->children.push_back(std::move(right));
    return node;
}

NodePtr preparedCall(const Function& function, Type type, std::vector<NodePtr> arguments,
                     std::shared_ptr<const PreparedFunction> prepared) {
    NodePtr node = made(NodeKind::Call, type, std::move(arguments));
    node->function = &function;
    node->prepared = std::move(prepared);
    return node;
}

NodePtr between(const Function& function, std::vector<NodePtr>& arguments) {
    const Pair low = pairOf(*arguments[0], *arguments[1]);
    const Pair high = pairOf(*arguments[0], *arguments[2]);
    if (low == Pair::Elsewise || high == Pair::Elsewise || (!isOfCells(low) && !isOfCells(high)))
        return nullptr;
    const auto isFixed = [](const Node& limit) { return limit.isConstant() && !limit.constant.isNull(); };
    const bool isSplit = low == Pair::CellNumber && high == low && isFixed(*arguments[1]) && isFixed(*arguments[2]);
    if (!isSplit)
        return preparedCall(function, Type::Boolean, std::move(arguments), std::make_shared<CellsBetween>(low, high));
    // A column between two constant numbers becomes two comparisons, for which blocks have operators.
    NodePtr both = makeNode(NodeKind::And, Type::Boolean);
    both->children.push_back(
        comparisonOf(Comparison::GreaterOrEqual, copyOfField(*arguments[0]), std::move(arguments[1])));
    both->children.push_back(comparisonOf(Comparison::LessOrEqual, std::move(arguments[0]), std::move(arguments[2])));
    return both;
}

NodePtr extreme(const Function& function, std::vector<NodePtr>& arguments, ConstantFolder& folder) {
    const auto isOther = [](const Node& node) { return !isCell(node); };
    if (!isAny(arguments, isOther))
        return preparedCall(function, Type::Text, std::move(arguments),
                            std::make_shared<ExtremeCell>(function.implementation == number_functions::greatest));
    const auto isUsable = [](const NodePtr& node) { return isNumeric(*node) || isCell(*node) || isFixedNumber(*node); };
    if (isAny(arguments, isNumeric) && std::ranges::all_of(arguments, isUsable)) {
        for (NodePtr& node : arguments)
            node = isCell(*node) ? convertedNode(std::move(node), Type::Real, folder) : std::move(node);
    }
    return nullptr; // numbers now, if anything
}

NodePtr list(std::vector<NodePtr>& arguments, ConstantFolder& folder) {
    const Node& subject = *arguments.front();
    if (isAny(arguments, [](const Node& node) { return node.type == Type::Date; }))
        return nullptr;
    const auto isMemberOfCells = [&](const NodePtr& member) { return isOfCells(pairOf(subject, *member)); };
    if (std::none_of(arguments.begin() + 1, arguments.end(), isMemberOfCells))
        return nullptr;
    if (!isCell(subject)) {
        const auto isUsable = [](const NodePtr& node) {
            return isNumeric(*node) || isCell(*node) || isFixedNumber(*node) || node->type == Type::Null;
        };
        if (!std::all_of(arguments.begin() + 1, arguments.end(), isUsable))
            return nullptr;
    }
    const bool isOfCell = isCell(subject);
    for (NodePtr& node : arguments) {
        if (isOfCell && node->type == Type::Boolean)
            node = convertedNode(std::move(node), Type::Text, folder);
        else if (!isOfCell && isFixedText(*node))
            node = makeConstant(numberOfText(node->text));
    }
    NodePtr node = inList(std::move(arguments));
    if (node->kind == NodeKind::InList) {
        node->hasCells = true;
        node->hasList = false;
        node->list.clear();
    }
    return node;
}

NodePtr nullIf(const Function& function, std::vector<NodePtr>& arguments) {
    const Pair pair = pairOf(*arguments[0], *arguments[1]);
    if (pair != Pair::Cells && pair != Pair::CellNumber)
        return nullptr;
    return preparedCall(function, Type::Text, std::move(arguments), std::make_shared<NullIfCell>(pair));
}

} // namespace

NodePtr cellComparison(Comparison comparison, std::vector<NodePtr>& sides) {
    return isOfCells(pairOf(*sides[0], *sides[1])) ? comparisonOf(comparison, std::move(sides[0]), std::move(sides[1]))
                                                   : nullptr;
}

NodePtr cellCall(const Function& function, std::vector<NodePtr>& arguments, ConstantFolder& folder) {
    if (function.form == Form::InList)
        return list(arguments, folder);
    if (function.implementation == number_functions::between)
        return between(function, arguments);
    if (function.implementation == number_functions::greatest || function.implementation == number_functions::least)
        return extreme(function, arguments, folder);
    return function.implementation == number_functions::nullIf ? nullIf(function, arguments) : nullptr;
}

std::string remarkOnCells(const std::vector<NodePtr>& values, bool isOrder) {
    const auto fixed = std::ranges::find_if(values, [](const NodePtr& node) { return isFixedNumber(*node); });
    if (!isOrder || fixed == values.end() || !isAny(values, isCell))
        return {};
    return fmt::format("this compares texts, where '9' comes after '10'; to compare numbers write {} without quotes",
                       shortened((*fixed)->text, kLongestShown));
}

} // namespace tavix::expression
