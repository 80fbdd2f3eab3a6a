#pragma once

#include "expression/ConstantFolder.h"
#include "expression/Node.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Decides what values of different types become when an expression compares or combines them. docs/expressions.md,
/// "Types", explains it to users.
namespace tavix::expression {

enum class Unification : std::uint8_t {
    Compared, ///< the two sides of a comparison; integers and reals may be mixed
    Ordered,  ///< the arguments of min and max
    Equated,  ///< the arguments of inlist and nullif
    Chosen,   ///< one of them is the result: coalesce, ifnull, the results of an if
};

struct Unified {
    Type type = Type::Null;           ///< the type of all values now
    std::optional<std::size_t> clash; ///< the value that does not go with the others
    Type clashesWith = Type::Null;    ///< the type of one of the others
    /// A constant text compared with a date that is not a date; set together with `clash`.
    std::string notDate;
};

/// Converts the values to one type.
[[nodiscard]] Unified unify(std::vector<NodePtr>& values, Unification unification, ConstantFolder& folder);

/// A remark for the author about the values, before they are converted; "" when there is none. `isOrder`: they are
/// compared by < or the like.
[[nodiscard]] std::string remarkOnTypes(const std::vector<NodePtr>& values, bool isOrder);

} // namespace tavix::expression
