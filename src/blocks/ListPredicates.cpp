#include "blocks/Operand.h"
#include "blocks/Predicate.h"
#include "blocks/TextTable.h"
#include "expression/Conversion.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tavix::expression {

namespace {

/// A list of constant texts.
class TextListPredicate : public Predicate {
  public:
    explicit TextListPredicate(const Node& node) : m_operand(makeOperand(node.child(0))), m_table(node.list) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        withTexts(vector, [&rows, &table = m_table, wanted, readable = vector.readable](auto texts) {
            const auto mayHold = [filter = table.filter(), texts, readable](std::uint32_t row) {
                return filter.mayHold(texts[row], readable);
            };
            const auto holds = [&](std::uint32_t row) { return table.holds(texts[row], readable); };
            if (!wanted) {
                rows.keepIf([&](std::uint32_t row) { return !(mayHold(row) && holds(row)); });
                return;
            }
            // Two passes, so that nothing branches on what most rows are.
            rows.keepIf(mayHold);
            rows.keepIf(holds);
        });
    }

  private:
    OperandPtr m_operand;
    TextTable m_table;
};

/// A list of constant numbers or dates of the value's type.
template <typename Number>
class NumberListPredicate : public Predicate {
  public:
    NumberListPredicate(const Node& node, Number Value::*number) : m_operand(makeOperand(node.child(0))) {
        for (std::size_t i = 1; i < node.children.size(); ++i)
            m_members.push_back(node.child(i).constant.*number);
        std::ranges::sort(m_members);
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        const Vector& vector = m_operand->evaluate(frame, rows);
        dropNulls(rows, vector);
        if (rows.isEmpty())
            return;
        const Number* values = nullptr;
        if constexpr (std::is_same_v<Number, double>)
            values = vector.reals;
        else
            values = vector.integers;
        if (m_members.size() > kFew) {
            rows.keepIf(
                [&](std::uint32_t row) { return std::ranges::binary_search(m_members, values[row]) == wanted; });
            return;
        }
        rows.keepIf(
            [members = m_members.data(), end = m_members.data() + m_members.size(), values, wanted](std::uint32_t row) {
                const Number value = values[row];
                bool isMember = false;
                for (const Number* member = members; member != end; ++member)
                    isMember |= *member == value;
                return isMember == wanted;
            });
    }

  private:
    /// Up to here comparing with each member is cheaper than a search.
    static constexpr std::size_t kFew = 8;

    OperandPtr m_operand;
    std::vector<Number> m_members; ///< ascending
};

/// A list with members that are not constant.
class ListPredicate : public Predicate {
  public:
    explicit ListPredicate(const Node& node) : m_node(node) {
        for (const NodePtr& child : node.children)
            m_operands.push_back(makeOperand(*child));
    }

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        m_columns.clear();
        for (const OperandPtr& operand : m_operands)
            m_columns.push_back(&operand->evaluate(frame, rows));
        dropNulls(rows, *m_columns.front());
        rows.keepIf([&](std::uint32_t row) {
            const Value subject = m_columns.front()->at(row);
            bool sawNull = false;
            bool isFound = false;
            for (std::size_t i = 1; i < m_columns.size() && !isFound; ++i) {
                const Value member = m_columns[i]->at(row);
                sawNull = sawNull || member.isNull();
                isFound = !member.isNull() && isMember(m_node, i, subject, member);
            }
            return wanted ? isFound : !isFound && !sawNull;
        });
    }

  private:
    const Node& m_node;
    std::vector<OperandPtr> m_operands;
    std::vector<const Vector*> m_columns;
};

/// A list that contains null: a value that is not found gives null, not false.
class NullListPredicate : public Predicate {
  public:
    explicit NullListPredicate(PredicatePtr others) : m_others(std::move(others)) {}

    void narrow(Frame& frame, RowSet& rows, bool wanted) override {
        m_others->narrow(frame, rows, true);
        if (!wanted)
            rows.clear();
    }

  private:
    PredicatePtr m_others;
};

bool hasFixedMembers(const Node& node) {
    return std::all_of(node.children.begin() + 1, node.children.end(), [&](const NodePtr& member) {
        return member->isConstant() && member->constant.type == node.child(0).type;
    });
}

PredicatePtr makePlainListTest(const Node& node) {
    const Node& subject = node.child(0);
    if (node.hasCells) {
        if (PredicatePtr test = makeCellListTest(node))
            return test;
    } else if (!subject.isConstant()) {
        if (subject.type == Type::Text && node.hasList)
            return std::make_unique<TextListPredicate>(node);
        if (subject.type == Type::Real && hasFixedMembers(node))
            return std::make_unique<NumberListPredicate<double>>(node, &Value::real);
        if ((subject.type == Type::Integer || subject.type == Type::Date) && hasFixedMembers(node))
            return std::make_unique<NumberListPredicate<std::int64_t>>(node, &Value::integer);
    }
    return std::make_unique<ListPredicate>(node);
}

} // namespace

PredicatePtr makeListTest(const Node& node) {
    PredicatePtr test = makePlainListTest(node);
    return node.hasNull ? std::make_unique<NullListPredicate>(std::move(test)) : std::move(test);
}

} // namespace tavix::expression
