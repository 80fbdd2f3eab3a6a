#include "blocks/Operand.h"
#include "blocks/PairPredicate.h"
#include "blocks/Predicate.h"
#include "expression/Cells.h"
#include "expression/NumberReader.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tavix::expression {

namespace {

/// The orders for which a comparison is true: bit 0 for less, bit 1 for equal, bit 2 for greater, bit 3 for a cell that
/// is not a number.
constexpr std::uint32_t kNotANumber = 3;

std::uint32_t ordersOf(Comparison comparison, bool wanted) {
    const std::uint32_t otherwise = wanted ? 0 : 0b0111;
    switch (comparison) {
    case Comparison::Less:
        return 0b0001 ^ otherwise;
    case Comparison::LessOrEqual:
        return 0b0011 ^ otherwise;
    case Comparison::Equal:
        return wanted ? 0b0010 : 0b1101;
    case Comparison::NotEqual:
        return wanted ? 0b1101 : 0b0010;
    case Comparison::GreaterOrEqual:
        return 0b0110 ^ otherwise;
    case Comparison::Greater:
        return 0b0100 ^ otherwise;
    }
    return 0;
}

/// The bit of the order of a cell and a constant.
class ConstantOrder {
  public:
    explicit ConstantOrder(const Value& constant)
        : m_constant(constant),
          m_real(constant.type == Type::Real ? constant.real : static_cast<double>(constant.integer)) {}

    [[nodiscard]] std::uint32_t operator()(std::string_view cell) const {
        const Value number = numberOfText(cell);
        if (number.type == Type::Integer && m_constant.type == Type::Integer)
            return bitOf(number.integer, m_constant.integer);
        if (number.type == Type::Real && m_constant.type == Type::Real)
            return bitOf(number.real, m_real);
        if (number.type == Type::Integer)
            return bitOf(static_cast<double>(number.integer), m_real);
        if (number.isNull())
            return kNotANumber;
        const auto order = orderOfCell(cell, m_constant);
        return bitOf(*order, 0);
    }

  private:
    template <typename Number>
    static std::uint32_t bitOf(Number left, Number right) {
        return left < right ? 0U : left == right ? 1U : 2U;
    }

    Value m_constant;
    double m_real;
};

/// Compares cells with a constant number.
class CellNumberComparison : public Predicate {
  public:
    explicit CellNumberComparison(const Node& node)
        : m_comparison(node.comparison), m_operand(makeOperand(node.child(0))), m_order(node.child(1).constant) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        withTexts(vector, [&rows, order = m_order, orders = ordersOf(m_comparison, wanted)](auto texts) {
            rows.keepIf([&](std::uint32_t row) { return ((orders >> order(texts[row])) & 1U) != 0; });
        });
    }

  private:
    Comparison m_comparison;
    OperandPtr m_operand;
    ConstantOrder m_order;
};

/// Compares cells with the cells of another column or with numbers that vary by row.
class CellPairComparison : public PairPredicate {
  public:
    explicit CellPairComparison(const Node& node) : PairPredicate(node) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Sides sides = evaluate(frame, rows);
        rows.keepIf([&](std::uint32_t row) {
            const Value answer = compareCell(comparison(), sides.left.at(row).text, sides.right.at(row));
            return !answer.isNull() && answer.boolean == wanted;
        });
    }
};

/// A list of constant numbers and texts.
class CellListPredicate : public Predicate {
  public:
    explicit CellListPredicate(const Node& node) : m_operand(makeOperand(node.child(0))) {
        for (std::size_t i = 1; i < node.children.size(); ++i) {
            const Value& member = node.child(i).constant;
            if (member.type == Type::Text)
                m_texts.insert(member.text);
            else if (member.type == Type::Integer)
                m_integers.push_back(member.integer);
            if (member.type == Type::Real)
                m_reals.push_back(member.real);
            else if (member.type == Type::Integer)
                m_allAsReals.push_back(static_cast<double>(member.integer));
        }
        m_allAsReals.insert(m_allAsReals.end(), m_reals.begin(), m_reals.end());
        std::ranges::sort(m_integers);
        std::ranges::sort(m_reals);
        std::ranges::sort(m_allAsReals);
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        withTexts(vector,
                  [&](auto texts) { rows.keepIf([&](std::uint32_t row) { return holds(texts[row]) == wanted; }); });
    }

  private:
    [[nodiscard]] bool holds(std::string_view cell) const {
        const Value number = numberOfText(cell);
        if (number.type == Type::Integer && (std::ranges::binary_search(m_integers, number.integer) ||
                                             std::ranges::binary_search(m_reals, static_cast<double>(number.integer))))
            return true;
        constexpr double kBeyond = 9223372036854775808.0; // 2 to the power of 63
        if (number.type == Type::Real &&
            std::ranges::binary_search(number.real < kBeyond ? m_allAsReals : m_reals, number.real))
            return true;
        return !m_texts.empty() && m_texts.contains(cell);
    }

    OperandPtr m_operand;
    TextSet m_texts;
    std::vector<std::int64_t> m_integers;
    std::vector<double> m_reals;
    std::vector<double> m_allAsReals; ///< both
};

} // namespace

PredicatePtr makeCellComparison(const Node& node) {
    const Node& other = node.child(1);
    if (other.isConstant() && !other.constant.isNull())
        return std::make_unique<CellNumberComparison>(node);
    return std::make_unique<CellPairComparison>(node);
}

PredicatePtr makeCellListTest(const Node& node) {
    const Node& subject = node.child(0);
    const bool isFixed = std::all_of(node.children.begin() + 1, node.children.end(),
                                     [](const NodePtr& member) { return member->isConstant(); });
    if (subject.kind != NodeKind::Field || subject.type != Type::Text || !isFixed)
        return nullptr;
    return std::make_unique<CellListPredicate>(node);
}

} // namespace tavix::expression
