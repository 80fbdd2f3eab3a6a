#pragma once

#include "blocks/Operand.h"
#include "blocks/Predicate.h"

namespace tavix::expression {

/// A comparison of two expressions that both vary by row. It is never true where one of them is null.
class PairPredicate : public Predicate {
  protected:
    explicit PairPredicate(const Node& node)
        : m_comparison(node.comparison), m_left(makeOperand(node.child(0))), m_right(makeOperand(node.child(1))) {}

    struct Sides {
        const Vector& left;
        const Vector& right;
    };
    /// Both sides, valid until the next call. Removes the rows in which one is null.
    [[nodiscard]] Sides evaluate(Frame& frame, RowSet& rows) {
        const Vector& left = m_left->evaluate(frame, rows);
        const Vector& right = m_right->evaluate(frame, rows);
        dropNulls(rows, left);
        dropNulls(rows, right);
        return {left, right};
    }
    [[nodiscard]] Comparison comparison() const { return m_comparison; }

  private:
    Comparison m_comparison;
    OperandPtr m_left;
    OperandPtr m_right;
};

} // namespace tavix::expression
