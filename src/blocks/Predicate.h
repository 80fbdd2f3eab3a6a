#pragma once

#include "blocks/Frame.h"
#include "blocks/RowSet.h"
#include "expression/Node.h"

#include <memory>

namespace tavix::expression {

/// Narrows a set of rows to those for which a condition is true, or false. These are two questions, so that "not" costs
/// nothing and null is neither.
class Predicate {
  public:
    Predicate() = default;
    Predicate(const Predicate&) = delete;
    Predicate& operator=(const Predicate&) = delete;
    virtual ~Predicate() = default;

    virtual void narrow(Frame& frame, RowSet& rows, bool wanted) = 0;
};

using PredicatePtr = std::unique_ptr<Predicate>;

/// Makes the operator for a condition, which must outlive it.
[[nodiscard]] PredicatePtr makePredicate(const Node& node);

/// For a comparison.
[[nodiscard]] PredicatePtr makeComparison(const Node& node);
/// For a comparison of a text field by what its cells are.
[[nodiscard]] PredicatePtr makeCellComparison(const Node& node);
/// For a list whose members are constants, and whose subject is a text field that is compared so.
[[nodiscard]] PredicatePtr makeCellListTest(const Node& node);
/// Combines two adjacent children of an "and" or "or" into one operator that reads the rows once; null when that is not
/// possible.
[[nodiscard]] PredicatePtr makeRange(const Node& first, const Node& second, bool isAnd);
/// For a test whether a value is in a list.
[[nodiscard]] PredicatePtr makeListTest(const Node& node);
/// For a test of a text; null when the node is not such a test.
[[nodiscard]] PredicatePtr makeTextTest(const Node& node);

/// Removes the rows in which the vector is null.
inline void dropNulls(RowSet& rows, const Vector& vector) {
    if (vector.isConstant && vector.constant.isNull())
        rows.clear();
    else if (vector.nulls)
        rows.keepIf([&](std::uint32_t row) { return vector.nulls[row] == 0; });
}

} // namespace tavix::expression
