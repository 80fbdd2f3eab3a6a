#pragma once

#include "expression/Node.h"
#include "expression/Scratch.h"
#include "expression/Value.h"

#include <span>
#include <vector>

namespace tavix::expression {

/// Evaluates a tree for one row of values. Failures are left in the scratch; the value is then meaningless.
class Interpreter {
  public:
    explicit Interpreter(Scratch& scratch) : m_scratch(scratch) {}

    /// `row`: a value for each field of the list that the tree was checked against.
    [[nodiscard]] Value evaluate(const Node& node, std::span<const Value> row);
    /// Whether the condition is true or, with `wanted` false, whether it is false; null is neither. Evaluates only what
    /// the answer needs.
    [[nodiscard]] bool is(bool wanted, const Node& condition, std::span<const Value> row);

  private:
    Value evaluateJunction(const Node& node, std::span<const Value> row);
    Value evaluateCall(const Node& node, std::span<const Value> row);
    Value evaluateList(const Node& node, std::span<const Value> row);
    Value evaluateIf(const Node& node, std::span<const Value> row);
    Value evaluateOperator(const Node& node, std::span<const Value> row);

    Scratch& m_scratch;
    std::vector<Value> m_arguments; ///< of the calls being evaluated, the innermost last
};

} // namespace tavix::expression
