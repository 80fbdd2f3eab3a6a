#pragma once

#include "blocks/Frame.h"
#include "blocks/RowSet.h"
#include "expression/Node.h"

#include <memory>

namespace tavix::expression {

/// Narrows a set of rows to those for which a condition holds. Asking for "true" and for "false" are two questions, so
/// that "not" costs nothing and null is neither.
class Predicate {
  public:
    Predicate() = default;
    Predicate(const Predicate&) = delete;
    Predicate& operator=(const Predicate&) = delete;
    virtual ~Predicate() = default;

    virtual void narrow(Frame& frame, RowSet& rows, bool wanted) = 0;
};

using PredicatePtr = std::unique_ptr<Predicate>;

/// The operators for a condition; the node has to outlive them.
[[nodiscard]] PredicatePtr makePredicate(const Node& node);

/// Those that compare; `node` is a comparison.
[[nodiscard]] PredicatePtr makeComparison(const Node& node);
/// Two neighbours below an "and" or "or" as one operator that reads the rows once; null when there is none for them.
[[nodiscard]] PredicatePtr makeRange(const Node& first, const Node& second, bool isAnd);
/// Those that look for a value in a list; `node` is one.
[[nodiscard]] PredicatePtr makeListTest(const Node& node);
/// Those that test a text; null when there is none for the node.
[[nodiscard]] PredicatePtr makeTextTest(const Node& node);

/// Takes away the rows in which the vector is null.
inline void dropNulls(RowSet& rows, const Vector& vector) {
    if (vector.isConstant && vector.constant.isNull())
        rows.clear();
    else if (vector.nulls)
        rows.keepIf([&](std::uint32_t row) { return vector.nulls[row] == 0; });
}

} // namespace tavix::expression
